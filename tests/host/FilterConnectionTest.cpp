#include "host/FilterHost.h"

namespace marnoth::test::filter_connection_test {
namespace {

TEST(InputPin, TakesFloatAndMakesItTheFormatOfTheInstrument) {
    FilterHost host;
    EXPECT_EQ(host.connectInput(48000, 1), S_OK);
    EXPECT_EQ(+host.filter->inputFormat.nSamplesPerSec, 48000u);
    EXPECT_EQ(host.filter->inputFormat.nChannels, 1);
    EXPECT_EQ(host.filter->inputFormat.nBlockAlign, 4);
}

TEST(InputPin, RefusesIntegersAndKeepsTheFormatsAsTheyWere) {
    FilterHost host;
    const CMediaType type = audioType(44100, 2, 1, 16);
    EXPECT_EQ(host.input().ReceiveConnection(&host.source, type.Get()), VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_FALSE(host.input().IsConnected());
    EXPECT_EQ(+host.filter->inputFormat.nSamplesPerSec, 0u);
    EXPECT_EQ(host.input().CheckMediaType(nullptr), E_POINTER);
}

TEST(InputPin, WantsATypeThatGoesWithEveryConnectedOutput) {
    FilterHost host;
    host.connectInput(44100, 2);
    ASSERT_EQ(host.connectOutput(0), S_OK);
    EXPECT_EQ(host.input().CheckMediaType(audioType(44100, 1).Get()), S_OK);
    EXPECT_EQ(host.input().CheckMediaType(audioType(48000, 2).Get()), VFW_E_TYPE_NOT_ACCEPTED);
}

TEST(InputPin, AskedAgainDuringItsOwnTestOfATypeTakesAnything) {
    FilterHost host;
    HRESULT nested = E_UNEXPECTED;
    host.filter->onCheckFormat = [&] { nested = host.input().CheckMediaType(nullptr); };
    EXPECT_EQ(host.input().CheckMediaType(audioType(44100, 2).Get()), S_OK);
    EXPECT_EQ(nested, S_OK);
    host.filter->onCheckFormat = nullptr;
    EXPECT_EQ(host.input().CheckMediaType(nullptr), E_POINTER);
}

TEST(InputPin, ConnectedAgainReconnectsTheOutputsThatNoLongerFit) {
    FilterHost host;
    host.connectInput(44100);
    for (int i : {3, 8}) ASSERT_EQ(host.connectOutput(i), S_OK);
    host.filter->JoinFilterGraph(&host.graph, L"Marnoth");
    EXPECT_EQ(host.input().CompleteConnect(&host.source), S_OK);
    EXPECT_TRUE(host.graph.reconnected.empty());

    host.input().SetMediaType(audioType(48000, 2).Get());
    EXPECT_EQ(host.input().CompleteConnect(&host.source), S_OK);
    EXPECT_EQ(host.graph.reconnected, (std::vector<IPin*>{&host.output(3), &host.output(8)}));
    host.graph.reconnected.clear();
    host.graph.reconnectResult = VFW_E_CANNOT_CONNECT;
    EXPECT_EQ(host.input().CompleteConnect(&host.source), VFW_E_CANNOT_CONNECT);
    EXPECT_EQ(host.graph.reconnected, std::vector<IPin*>{&host.output(3)});
    host.filter->JoinFilterGraph(nullptr, nullptr);
    EXPECT_EQ(host.input().CompleteConnect(&host.source), VFW_E_NOT_IN_GRAPH);
}

TEST(OutputPin, RefusesEverythingUntilTheInputIsConnected) {
    FilterHost host;
    EXPECT_EQ(host.connectOutput(0), VFW_E_NOT_CONNECTED);
    CFilterOutputPin& pin = host.output(0);
    EXPECT_EQ(pin.CheckMediaType(audioType(44100, 2).Get()), VFW_E_NOT_CONNECTED);
    EXPECT_EQ(pin.SetMediaType(audioType(44100, 2).Get()), VFW_E_NOT_CONNECTED);
    // What isn't float is refused for that, connected or not.
    EXPECT_EQ(pin.CheckMediaType(audioType(44100, 2, 1, 16).Get()), VFW_E_TYPE_NOT_ACCEPTED);
    IEnumMediaTypes* types = nullptr;
    EXPECT_EQ(pin.EnumMediaTypes(&types), VFW_E_NOT_CONNECTED);
    CMediaType type;
    EXPECT_EQ(pin.GetMediaType(0, &type), VFW_S_NO_MORE_ITEMS);
    EXPECT_EQ(pin.GetMediaType(-1, &type), VFW_S_NO_MORE_ITEMS);
}

TEST(OutputPin, TakesFloatAtTheInputsRateAlone) {
    FilterHost host;
    host.connectInput(44100, 2);
    EXPECT_EQ(host.connectOutput(0, 48000), VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_EQ(+host.filter->outputFormat.nSamplesPerSec, 0u);
    EXPECT_EQ(host.output(0).CheckMediaType(audioType(44100, 2, 1, 16).Get()), VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_EQ(host.output(0).CheckMediaType(nullptr), E_POINTER);
    EXPECT_EQ(host.connectOutput(0, 44100), S_OK);
    EXPECT_EQ(+host.filter->outputFormat.nSamplesPerSec, 44100u);
}

TEST(OutputPin, AskedAgainDuringItsOwnTestOfATypeTakesAnything) {
    FilterHost host;
    host.connectInput();
    HRESULT nested = E_UNEXPECTED;
    host.filter->onCheckFormat = [&] { nested = host.output(2).CheckMediaType(nullptr); };
    EXPECT_EQ(host.output(2).CheckMediaType(audioType(44100, 2).Get()), S_OK);
    EXPECT_EQ(nested, S_OK);
}

TEST(OutputPin, OffersWhatTheInputsSourceOffers) {
    FilterHost host;
    host.connectInput();
    RefPtr<IEnumMediaTypes> types;
    EXPECT_EQ(host.output(0).EnumMediaTypes(types.put()), S_OK);
    EXPECT_EQ(types.get(), &host.source.mediaTypes);
}

TEST(OutputPin, ProposesTheInputsFormatIntoTheBlockThatItIsGiven) {
    FilterHost host;
    host.connectInput(48000, 1);
    CMediaType type;
    EXPECT_EQ(host.output(0).GetMediaType(-1, &type), E_INVALIDARG);
    EXPECT_EQ(host.output(0).GetMediaType(1, &type), VFW_S_NO_MORE_ITEMS);
    EXPECT_EQ(host.output(0).GetMediaType(0, &type), E_FAIL);
    type = audioType(8000, 2);
    EXPECT_EQ(host.output(0).GetMediaType(0, &type), S_OK);
    ASSERT_NE(type.WaveFormat(), nullptr);
    EXPECT_EQ(+type.WaveFormat()->nSamplesPerSec, 48000u);
    EXPECT_EQ(type.WaveFormat()->nChannels, 1);
}

TEST(OutputPin, RefusesWhatComesFromUpstream) {
    FilterHost host;
    EXPECT_EQ(host.output(0).EndOfStream(), E_UNEXPECTED);
    EXPECT_EQ(host.output(0).BeginFlush(), E_UNEXPECTED);
    EXPECT_EQ(host.output(0).EndFlush(), E_UNEXPECTED);
    EXPECT_EQ(host.output(0).QueryInternalConnections(nullptr, nullptr), E_NOTIMPL);
    ALLOCATOR_PROPERTIES wanted;
    EXPECT_EQ(host.input().GetAllocatorRequirements(&wanted), E_NOTIMPL);
}

TEST(Buffers, FollowTheInputsWhateverWasAskedFor) {
    FilterHost host;
    host.connectInput();
    host.inputAllocator.properties = {5, 1024, 16, 8};
    ASSERT_EQ(host.connectOutput(0), S_OK);
    const ALLOCATOR_PROPERTIES& set = host.sinks[0].allocator.properties;
    EXPECT_EQ(set.cBuffers, 5);
    EXPECT_EQ(set.cbBuffer, 1024);
    EXPECT_EQ(set.cbAlign, 16);
    EXPECT_EQ(set.cbPrefix, 8);
}

TEST(Buffers, DoubleFromMonoToStereo) {
    FilterHost host;
    host.connectInput(44100, 1);
    host.inputAllocator.properties.cbBuffer = 512 * 4;
    ASSERT_EQ(host.connectOutput(0, 44100, 2), S_OK);
    EXPECT_EQ(host.sinks[0].allocator.properties.cbBuffer, 512 * 8);
}

TEST(Buffers, KeepTheInputsSizeFromStereoToMono) {
    FilterHost host;
    host.connectInput(44100, 2);
    host.inputAllocator.properties.cbBuffer = 512 * 8;
    ASSERT_EQ(host.connectOutput(0, 44100, 1), S_OK);
    EXPECT_EQ(host.sinks[0].allocator.properties.cbBuffer, 512 * 8);
}

TEST(Buffers, StayAsAskedForWhenTheInputHasNoAllocator) {
    FilterHost host;
    host.input().ReceiveConnection(&host.source, audioType(44100, 2).Get());
    host.connectOutput(0);
    FakeAllocator allocator;
    ALLOCATOR_PROPERTIES properties{3, 100, 1, 0};
    EXPECT_EQ(host.output(0).DecideBufferSize(&allocator, &properties), S_OK);
    EXPECT_EQ(allocator.properties.cBuffers, 3);
    EXPECT_EQ(allocator.properties.cbBuffer, 100);
}

TEST(Buffers, AreToldAsTheAllocatorGaveThem) {
    FilterHost host;
    host.connectInput();
    FakeAllocator allocator;
    allocator.grantedBytes = 9999;
    ALLOCATOR_PROPERTIES properties{};
    EXPECT_EQ(host.output(0).DecideBufferSize(&allocator, &properties), S_OK);
    EXPECT_EQ(properties.cbBuffer, 9999);
    allocator.setResult = VFW_E_BADALIGN;
    EXPECT_EQ(host.output(0).DecideBufferSize(&allocator, &properties), VFW_E_BADALIGN);
}

TEST(Flush, GoesToEveryConnectedOutputAndStopsAtTheFirstFailure) {
    FilterHost host;
    host.connectInput();
    for (int i : {0, 1, 2}) ASSERT_EQ(host.connectOutput(i), S_OK);
    EXPECT_EQ(host.input().BeginFlush(), S_OK);
    EXPECT_TRUE(host.input().IsFlushing());
    EXPECT_EQ(host.input().EndFlush(), S_OK);
    EXPECT_FALSE(host.input().IsFlushing());
    EXPECT_EQ(host.input().NewSegment(1, 2, 1.0), S_OK);
    EXPECT_EQ(host.input().SegmentStop(), 2);
    for (int i : {0, 1, 2}) {
        const SinkPin& sink = host.sinks[static_cast<std::size_t>(i)];
        EXPECT_EQ(sink.beginFlushes + sink.endFlushes + sink.segments, 3);
    }

    host.sinks[1].flushResult = E_ABORT;
    EXPECT_EQ(host.input().BeginFlush(), E_ABORT);
    EXPECT_FALSE(host.input().IsFlushing());
    EXPECT_EQ(host.sinks[0].beginFlushes, 2);
    EXPECT_EQ(host.sinks[1].beginFlushes, 2);
    EXPECT_EQ(host.sinks[2].beginFlushes, 1);
}

}  // namespace
}  // namespace marnoth::test::filter_connection_test
