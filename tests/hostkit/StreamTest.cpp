#include <gtest/gtest.h>

#include <algorithm>

#include "hostkit/FloatFormat.h"
#include "hostkit/HostGraph.h"
#include "hostkit/MakeObject.h"
#include "hostkit/StreamSink.h"
#include "hostkit/StreamSource.h"

namespace marnoth::test::stream_test {
namespace {

/// A source and a sink in a graph, nothing between them.
struct Line {
    Line() {
        graph->AddFilter(source.get(), L"Source");
        graph->AddFilter(sink.get(), L"Sink");
        sink->pin().setTaker([this](std::span<const float> samples, bool silent) {
            audio.insert(audio.end(), samples.begin(), samples.end());
            silentBlocks.push_back(silent);
        });
    }
    HRESULT connect(std::uint32_t rate, std::uint32_t channels) {
        source->pin().setFormat(floatFormat(rate, channels));
        return graph->Connect(&source->pin(), &sink->pin());
    }
    HRESULT send(const StreamBlock& block) { return source->pin().send(block); }

    std::vector<float> audio;
    std::vector<bool> silentBlocks;
    RefPtr<StreamSource> source = makeObject<StreamSource>();
    RefPtr<StreamSink> sink = makeObject<StreamSink>();
    RefPtr<HostGraph> graph = makeObject<HostGraph>();
};

TEST(Stream, AudioArrivesAsItWasSent) {
    Line line;
    ASSERT_EQ(line.connect(48000, 2), S_OK);
    ASSERT_EQ(line.graph->run(), S_OK);
    const std::vector<float> sent{0.25f, -0.5f, 1.0f, 2.0f};
    EXPECT_EQ(line.send({.frames = 2, .samples = sent}), S_OK);
    EXPECT_EQ(line.audio, sent);
    EXPECT_EQ(line.silentBlocks, std::vector<bool>{false});
}

TEST(Stream, MissingSamplesAreZeros) {
    Line line;
    ASSERT_EQ(line.connect(48000, 1), S_OK);
    ASSERT_EQ(line.graph->run(), S_OK);
    const std::vector<float> loud(4, 1.0f);
    EXPECT_EQ(line.send({.frames = 4, .samples = loud}), S_OK);
    EXPECT_EQ(line.send({.frames = 4, .samples = std::span(loud).first(1)}), S_OK);
    EXPECT_EQ(line.audio, (std::vector<float>{1, 1, 1, 1, 1, 0, 0, 0}));
}

TEST(Stream, SilenceArrivesMarkedAndAsZeros) {
    Line line;
    ASSERT_EQ(line.connect(48000, 2), S_OK);
    ASSERT_EQ(line.graph->run(), S_OK);
    const std::vector<float> loud(6, 1.0f);
    EXPECT_EQ(line.send({.frames = 3, .samples = loud}), S_OK);
    EXPECT_EQ(line.send({.frames = 3, .silent = true}), S_OK);
    EXPECT_EQ(line.silentBlocks, (std::vector<bool>{false, true}));
    EXPECT_EQ(std::vector<float>(line.audio.begin() + 6, line.audio.end()), std::vector<float>(6, 0.0f));
}

TEST(Stream, WithoutTheSilenceInterfaceSilenceIsPlainZeros) {
    Line line;
    ASSERT_EQ(line.connect(48000, 2), S_OK);
    line.source->pin().allocator().setSilenceOffered(false);
    ASSERT_EQ(line.graph->run(), S_OK);
    EXPECT_EQ(line.send({.frames = 3, .silent = true}), S_OK);
    EXPECT_EQ(line.silentBlocks, std::vector<bool>{false});
    EXPECT_EQ(line.audio, std::vector<float>(6, 0.0f));
}

TEST(Stream, NothingFlowsWhileStoppedOrUnconnected) {
    Line line;
    EXPECT_EQ(line.send({.frames = 3}), VFW_E_NOT_CONNECTED);
    ASSERT_EQ(line.connect(48000, 2), S_OK);
    EXPECT_EQ(line.send({.frames = 3}), VFW_E_NOT_COMMITTED);
    ASSERT_EQ(line.graph->run(), S_OK);
    EXPECT_EQ(line.send({.frames = 3}), S_OK);
    ASSERT_EQ(line.graph->stop(), S_OK);
    EXPECT_EQ(line.send({.frames = 3}), VFW_E_NOT_COMMITTED);
    EXPECT_EQ(line.silentBlocks.size(), 1u);
}

TEST(Stream, ABlockLongerThanTheBuffersIsRefusedUntilTheyGrow) {
    Line line;
    ASSERT_EQ(line.source->pin().setBlock(16), S_OK);
    ASSERT_EQ(line.connect(48000, 2), S_OK);
    ASSERT_EQ(line.graph->run(), S_OK);
    EXPECT_EQ(line.send({.frames = 17}), VFW_E_BUFFER_OVERFLOW);
    EXPECT_EQ(line.source->pin().setBlock(17), S_OK);
    EXPECT_EQ(line.send({.frames = 17}), S_OK);
}

TEST(StreamSource, OffersItsOneFormat) {
    Line line;
    line.source->pin().setFormat(floatFormat(96000, 1));
    RefPtr<IEnumMediaTypes> types;
    ASSERT_EQ(line.source->pin().EnumMediaTypes(types.put()), S_OK);
    AM_MEDIA_TYPE* type = nullptr;
    ULONG fetched = 0;
    ASSERT_EQ(types->Next(1, &type, &fetched), S_OK);
    const WAVEFORMATEX* format = WaveFormatOf(*type);
    ASSERT_NE(format, nullptr);
    EXPECT_EQ(format->wFormatTag, 3);
    EXPECT_EQ(format->nSamplesPerSec, 96000u);
    EXPECT_EQ(format->nChannels, 1);
    EXPECT_EQ(format->nBlockAlign, 4);
    EXPECT_EQ(format->nAvgBytesPerSec, 384000u);
    DeleteMediaType(type);
    EXPECT_EQ(types->Next(1, &type, &fetched), S_FALSE);
}

TEST(StreamSource, RefusesAnotherFormatThanItsOwn) {
    Line line;
    CMediaType other;
    ASSERT_EQ(other.SetWaveFormat(floatFormat(48000, 2)), S_OK);
    EXPECT_TRUE(FAILED(line.graph->ConnectDirect(&line.source->pin(), &line.sink->pin(), other.Get())));
    EXPECT_FALSE(line.source->pin().IsConnected());
}

TEST(StreamSink, TakesFloatOfOneOrTwoChannelsOnly) {
    Line line;
    EXPECT_TRUE(FAILED(line.connect(48000, 3)));
    EXPECT_EQ(line.connect(48000, 1), S_OK);
    WAVEFORMATEX integers = floatFormat(48000, 2);
    integers.wFormatTag = WAVE_FORMAT_PCM;
    CMediaType type;
    ASSERT_EQ(type.SetWaveFormat(integers), S_OK);
    EXPECT_EQ(line.sink->pin().QueryAccept(type.Get()), S_FALSE);
}

TEST(StreamSink, CountsEndsOfStreamAndTellsTheGraph) {
    Line line;
    ASSERT_EQ(line.connect(48000, 2), S_OK);
    ASSERT_EQ(line.graph->run(), S_OK);
    EXPECT_EQ(line.source->pin().DeliverEndOfStream(), S_OK);
    EXPECT_EQ(line.source->pin().DeliverEndOfStream(), S_OK);
    EXPECT_EQ(line.sink->pin().endsOfStream(), 2);
    EXPECT_EQ(line.graph->eventCount(EC_COMPLETE), 2);
    EXPECT_TRUE(line.audio.empty());
}

TEST(StreamSink, IsARenderer) {
    Line line;
    RefPtr<IAMFilterMiscFlags> flags;
    ASSERT_EQ(line.sink->QueryInterface(IID_IAMFilterMiscFlags, flags.putVoid()), S_OK);
    EXPECT_EQ(flags->GetMiscFlags(), 1u);
}

TEST(HostGraph, RefusesASecondConnectionOfAPin) {
    Line line;
    ASSERT_EQ(line.connect(48000, 2), S_OK);
    RefPtr<StreamSink> other = makeObject<StreamSink>();
    EXPECT_EQ(line.graph->Connect(&line.source->pin(), &other->pin()), VFW_E_ALREADY_CONNECTED);
}

TEST(HostGraph, ReconnectsEitherEndAnew) {
    Line line;
    ASSERT_EQ(line.connect(48000, 2), S_OK);
    line.source->pin().setFormat(floatFormat(44100, 1));
    ASSERT_EQ(line.graph->Reconnect(&line.sink->pin()), S_OK);
    EXPECT_EQ(line.sink->pin().CurrentMediaType().WaveFormat()->nSamplesPerSec, 44100u);
    line.source->pin().setFormat(floatFormat(96000, 2));
    ASSERT_EQ(line.graph->Reconnect(&line.source->pin()), S_OK);
    EXPECT_EQ(line.sink->pin().CurrentMediaType().WaveFormat()->nSamplesPerSec, 96000u);
}

TEST(HostGraph, ReconnectsNothingThatIsNotConnectedOrRuns) {
    Line line;
    EXPECT_EQ(line.graph->Reconnect(&line.source->pin()), VFW_E_NOT_CONNECTED);
    EXPECT_EQ(line.graph->Reconnect(nullptr), E_POINTER);
    ASSERT_EQ(line.connect(48000, 2), S_OK);
    ASSERT_EQ(line.graph->run(), S_OK);
    EXPECT_EQ(line.graph->Reconnect(&line.source->pin()), VFW_E_NOT_STOPPED);
    EXPECT_TRUE(line.source->pin().IsConnected());
}

TEST(HostGraph, TakesAllFiltersFromStateToState) {
    Line line;
    ASSERT_EQ(line.connect(48000, 2), S_OK);
    const auto states = [&] {
        return std::vector<FILTER_STATE>{line.graph->state(), line.source->State(), line.sink->State()};
    };
    const auto all = [](FILTER_STATE state) { return std::vector<FILTER_STATE>(3, state); };
    EXPECT_EQ(states(), all(State_Stopped));
    EXPECT_EQ(line.graph->pause(), S_OK);
    EXPECT_EQ(states(), all(State_Paused));
    EXPECT_EQ(line.graph->run(), S_OK);
    EXPECT_EQ(states(), all(State_Running));
    EXPECT_EQ(line.graph->stop(), S_OK);
    EXPECT_EQ(states(), all(State_Stopped));
}

TEST(HostGraph, StopsEverythingAgainWhenOneCannotStart) {
    Line line;
    ASSERT_EQ(line.connect(48000, 2), S_OK);
    // A sample of no bytes can't be allocated.
    ALLOCATOR_PROPERTIES none{0, 0, 1, 0};
    ALLOCATOR_PROPERTIES actual{};
    ASSERT_EQ(line.source->pin().allocator().SetProperties(&none, &actual), S_OK);
    EXPECT_EQ(line.graph->run(), VFW_E_SIZENOTSET);
    EXPECT_EQ(line.graph->state(), State_Stopped);
    EXPECT_EQ(line.sink->State(), State_Stopped);
}

TEST(HostGraph, FindsItsFiltersByName) {
    Line line;
    RefPtr<IBaseFilter> found;
    EXPECT_EQ(line.graph->FindFilterByName(L"Sink", found.put()), S_OK);
    EXPECT_EQ(found.get(), static_cast<IBaseFilter*>(line.sink.get()));
    EXPECT_EQ(line.graph->FindFilterByName(L"Drain", found.put()), VFW_E_NOT_FOUND);
}

TEST(HostGraph, LetsARemovedFilterGoUnconnected) {
    Line line;
    ASSERT_EQ(line.connect(48000, 2), S_OK);
    EXPECT_EQ(line.graph->RemoveFilter(line.sink.get()), S_OK);
    EXPECT_FALSE(line.source->pin().IsConnected());
    EXPECT_EQ(line.sink->Graph(), nullptr);
    EXPECT_EQ(line.graph->RemoveFilter(line.sink.get()), VFW_E_NOT_IN_GRAPH);
}

}  // namespace
}  // namespace marnoth::test::stream_test
