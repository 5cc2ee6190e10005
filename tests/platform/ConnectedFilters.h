#pragma once

#include <gtest/gtest.h>

#include "platform/TestFilter.h"

namespace marnoth::test {

/// Two filters on the test's stack, to be connected from the first one's output to the second one's input.
/// Stops and parts them at the end, since a connection is a ring of references.
struct TwoFilters {
    TwoFilters() {
        source.output.behaviour.proposedChannels = {2};
        source.logTo(log);
        sink.logTo(log);
    }
    ~TwoFilters() {
        source.Stop();
        sink.Stop();
        disconnect();
        EXPECT_EQ(source.references(), 1u) << "a reference to the source was lost";
        EXPECT_EQ(sink.references(), 1u) << "a reference to the sink was lost";
    }

    HRESULT connect(const AM_MEDIA_TYPE* type = nullptr) { return source.output.Connect(&sink.input, type); }
    void disconnect() {
        source.output.Disconnect();
        sink.input.Disconnect();
    }
    /// Downstream first, as a graph does it.
    void pause() {
        ASSERT_EQ(sink.Pause(), S_OK);
        ASSERT_EQ(source.Pause(), S_OK);
    }
    int channels() const { return source.output.CurrentMediaType().WaveFormat()->nChannels; }

    Log log;
    TestFilter source;
    TestFilter sink;
};

}  // namespace marnoth::test
