#include <stdexcept>

#include "host/FilterHost.h"
#include "support/AllocationMeter.h"
#include "support/EventLists.h"

namespace marnoth::test::block_cycle_test {
namespace {

using Block = FilterUnderTest::Block;

FakeSample stereoFrames(std::int32_t frames, float value = 0.0f) {
    FakeSample sample(static_cast<std::size_t>(frames) * 8);
    sample.fill(value);
    return sample;
}

void playLive(FilterHost& host, std::uint8_t key) {
    RawEventList list{midi(0, 0x90, key, 100)};
    ASSERT_EQ(host.filter->QueueRawInput(0, &list), S_OK);
}

TEST(Receive, DeliversOneSampleOnEveryConnectedOutput) {
    FilterHost host;
    host.start({0, 3});
    EXPECT_EQ(host.send(100, 0.5f), S_OK);
    // Audio at the input goes to every pin but the mix, and from there into the mix.
    EXPECT_EQ(host.last(3).audio, std::vector<float>(200, 0.5f));
    EXPECT_EQ(host.last(0).audio, std::vector<float>(200, 0.5f));
    EXPECT_EQ(host.sink(1).deliveries.size(), 0u);
    EXPECT_EQ(host.sink(0).allocator.samplesOut(), 0u);
    EXPECT_EQ(host.send(50), S_OK);
    EXPECT_EQ(host.last(0).audio.size(), 100u);
}

TEST(Receive, LeavesOutAFractionOfAFrame) {
    FilterHost host;
    host.start({0});
    FakeSample in(85);
    EXPECT_EQ(host.input().Receive(&in), S_OK);
    EXPECT_EQ(host.filter->position(), 10);
    EXPECT_EQ(host.last(0).bytes, 80);
    const auto& lengths = host.sink(0).allocator.samples[0]->lengthsSet;
    EXPECT_EQ(lengths, (std::vector<LONG>{85, 80}));
}

TEST(Receive, WithoutOutputsRendersAndMovesOn) {
    FilterHost host;
    host.start({});
    host.attach();
    playLive(host, 60);
    std::vector<Block> blocks;
    host.filter->onProcess = [&](const Block& block) { return blocks.push_back(block), S_OK; };
    std::int64_t retiredAt = -1;
    host.filter->onReleaseVoice = [&] { return retiredAt = host.filter->position(), S_OK; };
    EXPECT_EQ(host.send(100), S_OK);
    EXPECT_EQ(host.send(100), S_OK);
    EXPECT_EQ(retiredAt, 100);
    ASSERT_EQ(blocks.size(), 2u);
    EXPECT_EQ(blocks[0].pins.size(), 0u);
    EXPECT_EQ(blocks[0].notes, 1u);
    EXPECT_EQ(blocks[1].notes, 0u);
    EXPECT_EQ(blocks[1].position, 100);
    EXPECT_EQ(blocks[1].reserved, 100);
    host.filter->onReleaseVoice = nullptr;
}

TEST(Receive, IntoSmallerBuffersFailsAndDeliversNothing) {
    FilterHost host;
    host.sink(1).allocator.grantedBytes = 99 * 8;
    host.start({0, 1});
    EXPECT_EQ(host.send(100), E_FAIL);
    EXPECT_EQ(host.sink(0).deliveries.size() + host.sink(1).deliveries.size(), 0u);
    EXPECT_EQ(host.filter->position(), 0);
    // The samples of the block stay out until the graph stops.
    EXPECT_EQ(host.sink(0).allocator.samplesOut(), 1u);
    EXPECT_EQ(host.sink(1).allocator.samplesOut(), 1u);
    EXPECT_EQ(host.send(99), S_OK);
    EXPECT_EQ(host.sink(0).deliveries.size(), 1u);
    EXPECT_EQ(host.filter->position(), 99);
    host.filter->Stop();
    EXPECT_EQ(host.sink(0).allocator.samplesOut(), 0u);
    EXPECT_EQ(host.sink(1).allocator.samplesOut(), 0u);
}

TEST(Receive, RendersIntoNoBufferThatIsTooSmallForTheInputsChannels) {
    FilterHost host;
    // Buffers for a mono input, which then becomes a stereo one.
    host.inputAllocator.properties.cbBuffer = 512 * 4;
    ASSERT_EQ(host.connectInput(44100, 1), S_OK);
    for (int i : {0, 1}) ASSERT_EQ(host.connectOutput(i, 44100, 1), S_OK);
    host.input().Disconnect();
    ASSERT_EQ(host.connectInput(44100, 2), S_OK);
    ASSERT_EQ(host.filter->Pause(), S_OK);
    EXPECT_EQ(host.send(512, 0.5f), E_FAIL);
    EXPECT_EQ(host.filter->position(), 0);
    EXPECT_EQ(host.send(256, 0.5f), S_OK);
    // The first of the interleaved values, as many as a mono block has.
    EXPECT_EQ(host.last(1).audio, std::vector<float>(256, 0.5f));
}

TEST(Receive, CountsFramesByTheChannelsWhateverFrameSizeTheFormatTells) {
    FilterHost host;
    WAVEFORMATEX format = waveFormat(44100, 2);
    format.nBlockAlign = 1;
    const CMediaType type = audioType(format);
    host.inputAllocator.properties.cbBuffer = 100 * 8;
    ASSERT_EQ(host.input().ReceiveConnection(&host.source, type.Get()), S_OK);
    host.input().NotifyAllocator(&host.inputAllocator, FALSE);
    for (int i : {0, 1}) ASSERT_EQ(host.output(i).Connect(&host.sink(i), type.Get()), S_OK);
    ASSERT_EQ(host.filter->Pause(), S_OK);
    EXPECT_EQ(host.send(100, 0.25f), S_OK);
    EXPECT_EQ(host.filter->position(), 100);
    EXPECT_EQ(host.last(0).audio, std::vector<float>(200, 0.25f));
}

TEST(Receive, GivesBackTheFailureToGetABuffer) {
    FilterHost host;
    host.start({0, 1});
    host.sink(1).allocator.getResult = VFW_E_NOT_COMMITTED;
    EXPECT_EQ(host.send(100), VFW_E_NOT_COMMITTED);
    EXPECT_EQ(host.sink(0).deliveries.size(), 0u);
    EXPECT_EQ(host.filter->position(), 0);
}

TEST(Receive, GivesBackTheFailureOfTheDrain) {
    FilterHost host;
    host.start({0});
    host.attach();
    playLive(host, 60);
    host.filter->onCreateVoice = [] { return E_OUTOFMEMORY; };
    EXPECT_EQ(host.send(100), E_OUTOFMEMORY);
    EXPECT_EQ(host.filter->position(), 0);
    EXPECT_EQ(host.sink(0).allocator.samplesOut(), 1u);
    EXPECT_EQ(host.send(100), S_OK);
}

TEST(Receive, ARenderThatRaisesAnExceptionKeepsTheSamplesUntilTheStop) {
    FilterHost host;
    host.start({0, 1});
    host.filter->onProcess = [](const Block&) -> HRESULT { throw std::invalid_argument("a grain"); };
    EXPECT_THROW(host.send(100), std::invalid_argument);
    EXPECT_EQ(host.sink(0).deliveries.size(), 0u);
    EXPECT_EQ(host.sink(0).allocator.samplesOut() + host.sink(1).allocator.samplesOut(), 2u);
    host.filter->onProcess = nullptr;
    EXPECT_EQ(host.filter->Stop(), S_OK);
    EXPECT_EQ(host.sink(0).allocator.samplesOut() + host.sink(1).allocator.samplesOut(), 0u);
}

TEST(Receive, GivesBackTheFailureToRetireANote) {
    FilterHost host;
    host.start({});
    host.attach();
    playLive(host, 60);
    host.filter->onReleaseVoice = [] { return E_ABORT; };
    EXPECT_EQ(host.send(100), E_ABORT);
    EXPECT_EQ(host.filter->position(), 100);
    host.filter->onReleaseVoice = nullptr;
}

TEST(Receive, BeforeTheInputIsConnectedIsRefused) {
    FilterHost host;
    FakeSample in = stereoFrames(10);
    EXPECT_EQ(host.input().Receive(&in), VFW_E_NOT_CONNECTED);
    EXPECT_EQ(host.input().Receive(nullptr), E_POINTER);
}

TEST(Receive, ADiscontinuitySetsThePositionByItsTime) {
    FilterHost host;
    host.start({0}, 48000);
    std::vector<Block> blocks;
    host.filter->onProcess = [&](const Block& block) { return blocks.push_back(block), S_OK; };
    FakeSample in = stereoFrames(100);
    in.discontinuity = in.hasStart = in.hasEnd = true;
    in.start = 10000000;  // 1 s
    EXPECT_EQ(host.input().Receive(&in), S_OK);
    EXPECT_EQ(blocks[0].position, 48000);
    EXPECT_EQ(blocks[0].reserved, 0);
    EXPECT_EQ(host.last(0).start, 10000000);
    EXPECT_TRUE(host.last(0).discontinuity);
    EXPECT_EQ(host.send(100), S_OK);
    EXPECT_EQ(blocks[1].position, 48100);
    EXPECT_EQ(blocks[1].reserved, 100);
}

TEST(Receive, ADiscontinuityInTheMiddleOfASampleIsCut) {
    FilterHost host;
    host.start({}, 44100);
    std::int64_t position = 0;
    host.filter->onProcess = [&](const Block& block) { return position = block.position, S_OK; };
    FakeSample in = stereoFrames(1);
    in.discontinuity = in.hasStart = true;
    in.start = 12345678;  // 54444.43998 samples
    host.input().Receive(&in);
    EXPECT_EQ(position, 54444);
    in.start = -12345678;
    host.input().Receive(&in);
    EXPECT_EQ(position, -54444);
    // The product with the rate needs more than 64 bits.
    in.start = INT64_MAX - 1;
    host.input().Receive(&in);
    EXPECT_EQ(position, 40675070682529561);
}

TEST(Receive, ADiscontinuityWithoutATimeLeavesThePosition) {
    FilterHost host;
    host.start({0});
    host.send(100);
    std::int64_t position = 0;
    host.filter->onProcess = [&](const Block& block) { return position = block.position, S_OK; };
    FakeSample in = stereoFrames(100);
    in.discontinuity = true;
    host.input().Receive(&in);
    EXPECT_EQ(position, 100);
    EXPECT_EQ(host.last(0).start, std::nullopt);
    EXPECT_TRUE(host.last(0).discontinuity);
}

TEST(Receive, WithoutADiscontinuityCarriesNoTimeOut) {
    FilterHost host;
    host.start({0});
    FakeSample in = stereoFrames(100);
    in.hasStart = in.hasEnd = true;
    in.start = 10000000;
    std::int64_t position = -1;
    host.filter->onProcess = [&](const Block& block) { return position = block.position, S_OK; };
    EXPECT_EQ(host.input().Receive(&in), S_OK);
    EXPECT_EQ(position, 0);
    EXPECT_EQ(host.last(0).start, std::nullopt);
}

TEST(Receive, CarriesTheFlagsOfTheInput) {
    FilterHost host;
    host.start({0});
    FakeSample in = stereoFrames(10);
    in.sync = true;
    host.input().Receive(&in);
    EXPECT_TRUE(host.last(0).sync);
    EXPECT_FALSE(host.last(0).preroll);
    in.sync = false;
    in.preroll = true;
    host.input().Receive(&in);
    EXPECT_FALSE(host.last(0).sync);
    EXPECT_TRUE(host.last(0).preroll);
    EXPECT_FALSE(host.last(0).discontinuity);
}

TEST(Receive, ReadsTheSilenceOfTheInputAndWritesItBack) {
    FilterHost host;
    host.start({});
    std::int32_t silent = -1;
    host.filter->onProcess = [&](const Block& block) { return silent = block.inputSilent, S_OK; };
    FakeSample marked(80, true);
    marked.silent = 1;
    host.input().Receive(&marked);
    EXPECT_EQ(silent, 1);
    EXPECT_EQ(marked.silentWritten, 1);
    EXPECT_EQ(marked.silent, 1);
    FakeSample plain(80);
    host.input().Receive(&plain);
    EXPECT_EQ(silent, 0);
    EXPECT_EQ(marked.references + plain.references, 0u);
}

TEST(Receive, DescribesEveryBufferToTheInstrument) {
    FilterHost host;
    host.start({0, 4});
    std::vector<PinBuffer> pins;
    host.filter->onProcess = [&](const Block& block) { return pins = block.pins, S_OK; };
    host.send(100);
    ASSERT_EQ(pins.size(), 2u);
    for (const PinBuffer& pin : pins) {
        EXPECT_EQ(pin.frames, 100);
        EXPECT_EQ(pin.data, nullptr);
        EXPECT_EQ(pin.silent, 1);
    }
    EXPECT_EQ(pins[0].pinId, host.output(0).id());
    EXPECT_EQ(pins[1].pinId, host.output(4).id());
}

TEST(Receive, ClearsASilentBufferThatCantBeMarked) {
    FilterHost host;
    host.start({0}, 44100, 1);
    host.filter->onProcess = [](const Block&) { return S_OK; };
    host.send(100);
    EXPECT_EQ(host.last(0).audio, std::vector<float>(100, 0.0f));
}

TEST(Receive, DeliversASilentBufferMarkedWhenItCanBe) {
    FilterHost host;
    host.sink(0).allocator.samplesOfferSilence = true;
    host.start({0});
    host.filter->onProcess = [](const Block&) { return S_OK; };
    host.send(100);
    EXPECT_EQ(host.last(0).silent, 1);
    host.filter->onProcess = nullptr;
    host.send(100);
    // The engine takes the memory of the mix, which takes the mark away.
    EXPECT_EQ(host.last(0).silent, 0);
    EXPECT_EQ(host.last(0).audio, std::vector<float>(200, 0.0f));
}

TEST(Receive, AFailedRenderCostsTheBlockAlone) {
    FilterHost host;
    host.start({0});
    host.filter->onProcess = [](const Block&) { return E_FAIL; };
    EXPECT_EQ(host.send(100), S_OK);
    EXPECT_EQ(host.sink(0).deliveries.size(), 0u);
    EXPECT_EQ(host.sink(0).endsOfStream, 0);
    EXPECT_EQ(host.sink(0).allocator.samplesOut(), 0u);
    EXPECT_EQ(host.filter->position(), 100);
}

TEST(Receive, ARenderThatIsOverEndsTheStream) {
    FilterHost host;
    host.start({0, 1});
    host.filter->onProcess = [](const Block&) { return S_FALSE; };
    EXPECT_EQ(host.send(100), S_OK);
    EXPECT_EQ(host.sink(0).deliveries.size(), 0u);
    EXPECT_EQ(host.sink(0).endsOfStream, 1);
    EXPECT_EQ(host.sink(1).endsOfStream, 1);
    EXPECT_EQ(host.sink(0).allocator.samplesOut(), 0u);
}

TEST(Receive, DeliversNoSampleThatRefusesItsLength) {
    FilterHost host;
    host.start({0, 1});
    host.sink(0).allocator.samples[0]->lengthResult = E_FAIL;
    EXPECT_EQ(host.send(100), S_OK);
    EXPECT_EQ(host.sink(0).deliveries.size(), 0u);
    EXPECT_EQ(host.sink(1).deliveries.size(), 1u);
}

TEST(Receive, DoesntLookAtWhatADeliveryGives) {
    FilterHost host;
    host.start({0, 1});
    host.sink(0).receiveResult = E_FAIL;
    EXPECT_EQ(host.send(100), S_OK);
    EXPECT_EQ(host.sink(1).deliveries.size(), 1u);
}

TEST(Receive, SurvivesPinsThatComeAndGoUnderWay) {
    FilterHost host;
    host.start({0});
    host.filter->onProcess = [&](const Block&) {
        for (int i = 0; i < 40; ++i) host.filter->AddOutputPin("Late", nullptr);
        host.filter->RemoveOutputPin(host.filter->GetPinId(1));
        return S_OK;
    };
    EXPECT_EQ(host.send(100), S_OK);
    host.filter->onProcess = nullptr;
    EXPECT_EQ(host.send(100), S_OK);
    EXPECT_EQ(host.sink(0).deliveries.size(), 2u);
}

TEST(Receive, TakesNothingFromTheFreeStore) {
    FilterHost host;
    host.start({0, 1, 2, 16});
    for (int i : {0, 1, 2, 16}) host.sink(i).keepsAudio = false;
    FakeSample in = stereoFrames(512, 0.25f);
    host.input().Receive(&in);
    AllocationMeter meter;
    for (int i = 0; i < 20; ++i) host.input().Receive(&in);
    EXPECT_EQ(meter.peakBytes(), 0u);
}

TEST(EndOfStream, WithoutOutputsIsNothing) {
    FilterHost host;
    host.start({});
    EXPECT_EQ(host.input().EndOfStream(), S_OK);
    EXPECT_EQ(host.filter->position(), 0);
}

TEST(EndOfStream, IsSentTwiceDownEveryOutput) {
    FilterHost host;
    host.start({0, 7});
    EXPECT_EQ(host.input().EndOfStream(), S_OK);
    EXPECT_EQ(host.sink(0).endsOfStream, 2);
    EXPECT_EQ(host.sink(7).endsOfStream, 2);
    EXPECT_EQ(host.sink(0).deliveries.size(), 0u);
    EXPECT_EQ(host.sink(0).allocator.samplesOut(), 0u);
    EXPECT_EQ(host.filter->position(), 0);
}

TEST(EndOfStream, GivesTheResultOfTheLastPin) {
    FilterHost host;
    host.start({0, 7});
    host.sink(0).endOfStreamResult = E_FAIL;
    EXPECT_EQ(host.input().EndOfStream(), S_OK);
    host.sink(7).endOfStreamResult = E_ABORT;
    EXPECT_EQ(host.input().EndOfStream(), E_ABORT);
}

TEST(EndOfStream, TheFirstPinSetsTheSizeAndALargerOneFails) {
    FilterHost smaller;
    smaller.sink(1).allocator.grantedBytes = 99 * 8;
    smaller.start({0, 1});
    EXPECT_EQ(smaller.input().EndOfStream(), S_OK);

    FilterHost larger;
    larger.sink(1).allocator.grantedBytes = 513 * 8;
    larger.start({0, 1});
    EXPECT_EQ(larger.input().EndOfStream(), E_FAIL);
    EXPECT_EQ(larger.sink(0).endsOfStream, 0);
}

TEST(EndOfStream, DeliversWhatAnInstrumentHasLeft) {
    FilterHost host;
    host.start({0});
    host.send(100);
    std::vector<Block> blocks;
    host.filter->onProcess = [&](const Block& block) {
        blocks.push_back(block);
        return blocks.size() < 4 ? S_OK : S_FALSE;
    };
    EXPECT_EQ(host.input().EndOfStream(), S_OK);
    ASSERT_EQ(blocks.size(), 4u);
    EXPECT_EQ(blocks[0].frames, -1);
    EXPECT_EQ(blocks[0].position, 100);
    EXPECT_EQ(blocks[3].position, 100 + 3 * 512);
    EXPECT_EQ(blocks[3].pins[0].sample, blocks[0].pins[0].sample);
    EXPECT_EQ(host.sink(0).deliveries.size(), 1u + 3u);
    EXPECT_EQ(host.sink(0).endsOfStream, 2);
    EXPECT_EQ(host.filter->position(), 100 + 3 * 512);
}

TEST(EndOfStream, DrainsAndRetiresTheNotesOfWhatIsLeft) {
    FilterHost host;
    host.start({0});
    host.attach();
    // Ticks of 24 are 12 ms, 529 samples: the second of the blocks of 512.
    RawEventList list{midi(0, 0x90, 60, 100), midi(1, 0x90, 61, 100), midi(24, 0x90, 62, 100)};
    ASSERT_EQ(host.filter->QueueRawInput(0, &list), S_OK);
    host.filter->onReleaseVoice = [] { return S_OK; };
    std::vector<std::size_t> notes;
    host.filter->onProcess = [&](const Block& block) {
        notes.push_back(block.notes);
        return notes.size() < 3 ? S_OK : S_FALSE;
    };
    EXPECT_EQ(host.input().EndOfStream(), S_OK);
    EXPECT_EQ(notes, (std::vector<std::size_t>{2, 1, 0}));
    host.filter->onReleaseVoice = nullptr;
}

TEST(EndOfStream, AFailedDeliveryOrRenderEndsItWithThatFailure) {
    FilterHost host;
    host.start({0});
    host.filter->onProcess = [](const Block&) { return S_OK; };
    host.sink(0).receiveResult = E_ACCESSDENIED;
    EXPECT_EQ(host.input().EndOfStream(), E_ACCESSDENIED);
    EXPECT_EQ(host.sink(0).endsOfStream, 1);
    host.filter->onProcess = [](const Block&) { return E_ABORT; };
    EXPECT_EQ(host.input().EndOfStream(), E_ABORT);
    EXPECT_EQ(host.sink(0).endsOfStream, 2);
    EXPECT_EQ(host.sink(0).allocator.samplesOut(), 0u);
}

TEST(Teardown, FreesTheVoicesOfNotesThatStillPlay) {
    // The sanitizers see a voice that is left behind.
    FilterHost host;
    host.start({});
    host.attach();
    playLive(host, 60);
    host.send(100);
    EXPECT_EQ(host.filter->eventQueue().size(), 1u);
}

}  // namespace
}  // namespace marnoth::test::block_cycle_test
