/// What a host asks of its graph, asked of the kit's own and of the system's.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hostkit/FloatFormat.h"
#include "hostkit/MakeObject.h"
#include "hostkit/StreamSink.h"
#include "hostkit/StreamSource.h"
#include "platform/graph/MediaType.h"
#include "shellkit/component/ComApartment.h"
#include "shellkit/component/SystemGraph.h"

namespace marnoth::test::audio_graph_test {
namespace {

struct Maker {
    const char* name;
    GraphMaker make;
};

/// A source and a sink in a graph.
class AudioGraphs : public testing::TestWithParam<Maker> {
protected:
    AudioGraphs() {
        EXPECT_EQ(graph->add(*source, L"Source"), S_OK);
        EXPECT_EQ(graph->add(*sink, L"Sink"), S_OK);
        source->pin().setFormat(floatFormat(48000, 2));
    }

    HRESULT connect(std::uint32_t rate = 48000) {
        CMediaType type;
        EXPECT_EQ(type.SetWaveFormat(floatFormat(rate, 2)), S_OK);
        return graph->connect(source->pin(), sink->pin(), *type);
    }

    void expectAll(FILTER_STATE state) {
        EXPECT_EQ((std::vector<FILTER_STATE>{graph->state(), source->State(), sink->State()}),
                  std::vector<FILTER_STATE>(3, state));
    }

    ComApartment apartment{COINIT_MULTITHREADED};
    RefPtr<StreamSource> source = makeObject<StreamSource>();
    RefPtr<StreamSink> sink = makeObject<StreamSink>();
    RefPtr<AudioGraph> graph = GetParam().make();
};

TEST_P(AudioGraphs, TakeAllFiltersFromStateToState) {
    ASSERT_EQ(connect(), S_OK);
    expectAll(State_Stopped);
    EXPECT_EQ(graph->pause(), S_OK);
    expectAll(State_Paused);
    EXPECT_EQ(graph->run(), S_OK);
    expectAll(State_Running);
    EXPECT_EQ(graph->pause(), S_OK);
    expectAll(State_Paused);
    EXPECT_EQ(graph->stop(), S_OK);
    expectAll(State_Stopped);
    EXPECT_EQ(graph->run(), S_OK);
    expectAll(State_Running);
}

TEST_P(AudioGraphs, StopEverythingAgainWhenOneCannotStart) {
    ASSERT_EQ(connect(), S_OK);
    // A sample of no bytes can't be allocated.
    ALLOCATOR_PROPERTIES none{0, 0, 1, 0};
    ALLOCATOR_PROPERTIES actual{};
    ASSERT_EQ(source->pin().allocator().SetProperties(&none, &actual), S_OK);
    for (HRESULT (AudioGraph::*start)() : {&AudioGraph::pause, &AudioGraph::run}) {
        EXPECT_EQ((graph.get()->*start)(), VFW_E_SIZENOTSET);
        expectAll(State_Stopped);
    }
}

TEST_P(AudioGraphs, GiveTheReasonOfAPinThatRefuses) {
    EXPECT_EQ(connect(44100), VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_FALSE(source->pin().IsConnected());
    EXPECT_EQ(connect(), S_OK);
    EXPECT_EQ(connect(), VFW_E_ALREADY_CONNECTED);
}

TEST_P(AudioGraphs, TakeAllConnectionsApartAndMakeThemAnew) {
    EXPECT_EQ(graph->disconnectAll(), S_OK);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(connect(), S_OK);
        EXPECT_EQ(graph->disconnectAll(), S_OK);
        EXPECT_FALSE(source->pin().IsConnected());
        EXPECT_FALSE(sink->pin().IsConnected());
    }
}

TEST_P(AudioGraphs, TakeNothingApartWhileTheyRun) {
    ASSERT_EQ(connect(), S_OK);
    ASSERT_EQ(graph->run(), S_OK);
    EXPECT_EQ(graph->disconnectAll(), VFW_E_NOT_STOPPED);
    EXPECT_TRUE(source->pin().IsConnected());
    EXPECT_TRUE(sink->pin().IsConnected());
}

TEST_P(AudioGraphs, LeaveTheirFiltersStoppedAndByThemselvesAsTheyGo) {
    ASSERT_EQ(connect(), S_OK);
    ASSERT_EQ(graph->run(), S_OK);
    graph.reset();
    EXPECT_EQ(source->State(), State_Stopped);
    EXPECT_EQ(sink->State(), State_Stopped);
    EXPECT_FALSE(source->pin().IsConnected());
    EXPECT_FALSE(sink->pin().IsConnected());
    EXPECT_EQ(source->Graph(), nullptr);
    EXPECT_EQ(source.detach()->Release(), 0u);
    EXPECT_EQ(sink.detach()->Release(), 0u);
}

TEST_P(AudioGraphs, KeepNoTime) {
    ASSERT_EQ(connect(), S_OK);
    ASSERT_EQ(graph->run(), S_OK);
    RefPtr<IReferenceClock> clock;
    EXPECT_EQ(sink->GetSyncSource(clock.put()), S_OK);
    EXPECT_FALSE(clock);
}

INSTANTIATE_TEST_SUITE_P(Of, AudioGraphs,
                         testing::Values(Maker{"the_kit", makeHostGraph},
                                         Maker{"the_system", makeSystemGraph}),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace marnoth::test::audio_graph_test
