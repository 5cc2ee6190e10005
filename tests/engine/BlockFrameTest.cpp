#include <gtest/gtest.h>

#include <deque>

#include "engine/VoiceRig.h"
#include "platform/graph/Graph.h"

namespace marnoth::test::block_frame_test {
namespace {

/// A stereo block whose pins hold what the test put there.
struct Block {
    explicit Block(std::int32_t frames) : frames(frames) {}

    void add(std::uint32_t pinId) {
        memory.emplace_back(static_cast<std::size_t>(frames) * 2, 7.0f);
        pins.push_back({frames, pinId, nullptr, memory.back().data(), 1});
    }
    HRESULT process(VoiceRig& rig, std::vector<float>* input) {
        PinBuffer in{frames, 0, nullptr, input ? input->data() : nullptr, input ? 0 : 1};
        return rig.engine.ProcessBlock(0, &in, pins.data(), static_cast<std::int32_t>(pins.size()), 0,
                                       &rig.notes);
    }

    std::int32_t frames;
    std::deque<std::vector<float>> memory;
    std::vector<PinBuffer> pins;
};

std::vector<float> counting(std::size_t values) {
    std::vector<float> sound;
    for (std::size_t i = 0; i < values; ++i) sound.push_back(rampAt(static_cast<std::int64_t>(i)));
    return sound;
}

TEST(ChannelPins, RegisteringTwiceMakesOnePin) {
    FakeSynthContext context;
    EngineUnderTest engine(context);
    EXPECT_EQ(engine.RegisterChannelPin(4), 0);
    EXPECT_EQ(engine.RegisterChannelPin(4), 1);
    EXPECT_EQ(context.pinNames, (std::vector<std::string>{"Mix Output", "Chan 5"}));
}

TEST(ChannelPins, BadPadIsRefused) {
    FakeSynthContext context;
    EngineUnderTest engine(context);
    EXPECT_EQ(engine.RegisterChannelPin(-1), E_INVALIDARG);
    EXPECT_EQ(engine.RegisterChannelPin(16), E_INVALIDARG);
    EXPECT_EQ(context.pinNames.size(), 1u);
}

TEST(ChannelPins, RegisteringOutputsMakesAllSixteenOnce) {
    FakeSynthContext context;
    EngineUnderTest engine(context);
    EXPECT_EQ(engine.RegisterOutputs(), S_OK);
    EXPECT_EQ(engine.RegisterOutputs(), S_OK);
    ASSERT_EQ(context.pinNames.size(), 17u);
    EXPECT_EQ(context.pinNames[1], "Chan 1");
    EXPECT_EQ(context.pinNames[16], "Chan 16");
}

TEST(Format, OnlyFloatConnects) {
    VoiceRig rig;
    WAVEFORMATEX real = floatFormat(44100, 2);
    WAVEFORMATEX integer = real;
    integer.wFormatTag = WAVE_FORMAT_PCM;
    EXPECT_EQ(rig.engine.CheckInputFormat(&real), S_OK);
    EXPECT_EQ(rig.engine.CheckOutputFormat(&real), S_OK);
    EXPECT_EQ(rig.engine.CheckInputFormat(&integer), VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_EQ(rig.engine.CheckOutputFormat(&integer), VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_EQ(rig.engine.CheckFormatPair(&real, &real), S_OK);
    EXPECT_EQ(rig.engine.CheckFormatPair(&real, &integer), VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_EQ(rig.engine.CheckFormatPair(&integer, &real), VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_EQ(rig.engine.ProposeOutputFormat(&real), S_OK);
}

void expectForced(WAVEFORMATEX format) {
    VoiceRig rig;
    rig.context.rate = 48000;
    rig.engine.inputFormat = format;
    EXPECT_EQ(rig.engine.CheckFormat(), 1);
    const WAVEFORMATEX& now = *rig.engine.GetInputFormat();
    EXPECT_EQ(now.wFormatTag, 3);
    EXPECT_EQ(now.nChannels, 2);
    EXPECT_EQ(now.wBitsPerSample, 32);
    EXPECT_EQ(now.nBlockAlign, 8);
    EXPECT_EQ(now.nSamplesPerSec, 48000u);
    EXPECT_EQ(now.nAvgBytesPerSec, 384000u);
    EXPECT_EQ(now.cbSize, 0);
    EXPECT_EQ(rig.engine.CheckFormat(), 0);
}

TEST(Format, ThreeChannelsAreReplacedByStereoFloatAtTheContextsRate) {
    expectForced(floatFormat(96000, 3));
}

TEST(Format, SixteenBitIntegersAreReplacedByStereoFloatAtTheContextsRate) {
    WAVEFORMATEX format = floatFormat(44100, 2);
    format.wFormatTag = WAVE_FORMAT_PCM;
    format.wBitsPerSample = 16;
    format.nBlockAlign = 4;
    expectForced(format);
}

TEST(Format, LoadReportsAForcedFormat) {
    VoiceRig rig;
    rig.engine.inputFormat = {};
    const TempPath path = WaveFile().floats().values(constant(100)).writeTemp();
    std::int32_t bin = -1;
    std::uint32_t status = 0;
    EXPECT_EQ(rig.engine.LoadFileToBin("sound", path.c_str(), &bin, &status), 1);
    EXPECT_EQ(status, 2u);
}

TEST(Block, NullInputIsRefusedWithNothingDone) {
    VoiceRig rig(48000);
    rig.laySound(0, ramp(4000));
    rig.context.running = 1;
    rig.noteOn(60);
    rig.cycle(256);
    EXPECT_EQ(rig.engine.ProcessBlock(99999, nullptr, nullptr, 0, 0, &rig.notes), 1);
    rig.cycle(256);
    expectFrames(rig.audio[0], 0, 256, [](std::int64_t i) { return rampAt(256 + i); });
}

TEST(Block, RunsWithoutAnyPin) {
    VoiceRig rig;
    rig.laySound(0, constant(5000));
    rig.noteOn(60);
    PinBuffer input{512, 0, nullptr, nullptr, 1};
    EXPECT_EQ(rig.engine.ProcessBlock(0, &input, nullptr, 0, 0, &rig.notes), S_OK);
}

TEST(Block, InputReachesTheMixThroughEachOtherPin) {
    VoiceRig rig(44100, 2);
    Block block(64);
    for (const std::size_t pin : {0u, 3u, 5u}) block.add(rig.context.pinIds[pin]);
    std::vector<float> input = counting(128);
    EXPECT_EQ(block.process(rig, &input), S_OK);
    EXPECT_EQ(block.memory[1], input);
    EXPECT_EQ(block.memory[2], input);
    for (std::size_t i = 0; i < 128; ++i) EXPECT_EQ(block.memory[0][i], 2 * input[i]);
}

TEST(Block, InputIsLostWhenTheMixPinIsAlone) {
    VoiceRig rig(44100, 2);
    Block block(64);
    block.add(rig.context.pinIds[0]);
    std::vector<float> input = counting(128);
    EXPECT_EQ(block.process(rig, &input), S_OK);
    EXPECT_EQ(peak(block.memory[0]), 0);
}

TEST(Block, WithoutTheMixPinTheOthersStillPassTheInput) {
    VoiceRig rig(44100, 2);
    Block block(64);
    block.add(rig.context.pinIds[2]);
    std::vector<float> input = counting(128);
    EXPECT_EQ(block.process(rig, &input), S_OK);
    EXPECT_EQ(block.memory[0], input);
}

TEST(Block, SilentInputMakesEveryOtherPinSilent) {
    VoiceRig rig(44100, 2);
    Block block(64);
    block.add(rig.context.pinIds[0]);
    block.add(rig.context.pinIds[1]);
    block.pins[1].silent = 0;
    EXPECT_EQ(block.process(rig, nullptr), S_OK);
    EXPECT_EQ(block.pins[1].silent, 1);
    EXPECT_EQ(block.memory[1], std::vector<float>(128, 7.0f));
    EXPECT_EQ(peak(block.memory[0]), 0);
}

TEST(Block, MixIsWhatGoesToItAndWhatGoesToTheChannels) {
    VoiceRig rig(44100, 1);
    rig.laySound(0, constant(4000, 0.25f));
    rig.laySound(1, constant(4000, 0.5f));
    rig.engine.SetPadOutput(1, 3);
    rig.noteOn(60);
    rig.noteOn(62);
    rig.cycle(512);
    expectFrames(rig.audio[3], 44, 512, [](std::int64_t) { return 0.5; });
    expectFrames(rig.audio[0], 44, 512, [](std::int64_t) { return 0.75; });
}

/// A synced loop of one beat at 120 beats per minute and 48000 Hz, 24000 frames, in the block that starts
/// where `rig` stands: which frame of the loop its frame `i` is.
std::int64_t loopFrameOf(const VoiceRig& rig, std::int64_t i) {
    return std::lround(rig.audio[0][static_cast<std::size_t>(i)] * 131072.0) - 1;
}

TEST(Position, EngineCountsForItselfWhileTheTransportRuns) {
    VoiceRig rig(48000);
    rig.layLoop(0, ramp(24000), 1);
    rig.context.running = 1;
    rig.noteOn(60);
    rig.position = 1000;
    rig.cycle(512);
    EXPECT_EQ(loopFrameOf(rig, 100), 1100);
    rig.position = 9000;
    rig.cycle(512);
    EXPECT_EQ(loopFrameOf(rig, 100), 1612);
}

TEST(Position, ResetVoicesTakesTheHostsPositionAgain) {
    VoiceRig rig(48000);
    rig.layLoop(0, ramp(24000), 1);
    rig.context.running = 1;
    rig.noteOn(60);
    rig.position = 1000;
    rig.cycle(512);
    rig.engine.ResetVoices();
    rig.position = 9000;
    rig.noteOn(60);
    rig.cycle(512);
    EXPECT_EQ(loopFrameOf(rig, 100), 9100);
}

TEST(Position, GraphIsFollowedWhileTheTransportStands) {
    VoiceRig rig(48000);
    rig.laySound(0, ramp(20000));
    rig.engine.SetPadOneShot(0, 0);
    rig.noteOn(60);
    rig.position = 1000;
    rig.cycle(512);
    EXPECT_EQ(loopFrameOf(rig, 100), 100);
    rig.position = 5000;
    rig.cycle(512);
    EXPECT_EQ(loopFrameOf(rig, 0), 4000);
}

TEST(Position, EngineCountsItsOwnFramesWhileTheTransportStandsToo) {
    VoiceRig rig(48000);
    rig.layLoop(0, ramp(24000), 1);
    rig.cycle(512);
    rig.position = 9000;
    rig.cycle(512);
    rig.context.running = 1;
    rig.noteOn(60);
    rig.cycle(512);
    EXPECT_EQ(loopFrameOf(rig, 100), 1124);
}

TEST(Position, SkewCarriesSequencedNotesToWhereTheEngineIs) {
    VoiceRig rig(48000);
    rig.laySound(0, ramp(20000));
    rig.context.running = 1;
    rig.cycle(1024);
    rig.cycle(1024);
    // The graph starts again at 0 and the engine, at 2048, doesn't. A tick has 25 frames.
    rig.position = 0;
    rig.sequence(60, 20, 960);
    rig.cycle(1024);
    expectSilence(rig.audio[0], 0, 501);
    EXPECT_EQ(loopFrameOf(rig, 600), 100);
}

TEST(Position, SkewMovesAllTimesOfASequencedNoteButItsOpenEnd) {
    VoiceRig rig(48000);
    rig.context.running = 1;
    rig.cycle(24000);
    rig.position = 0;
    const VoiceState& voice = *rig.sequence(20, 96, 960).voice;
    rig.cycle(480);
    // The engine is a beat ahead; the positions have gone on by a block of 480 frames, a fiftieth of a beat.
    constexpr std::int64_t beat = 62914560;
    for (const VoiceLane* lane : {&voice.gate, &voice.shot}) {
        EXPECT_EQ(lane->start, beat / 10 + beat);
        EXPECT_EQ(lane->from, beat / 10 + beat);
        EXPECT_NEAR(static_cast<double>(lane->position), beat * 1.12, 1);
    }
    EXPECT_EQ(voice.gate.end, beat / 10 + 2 * beat);
    EXPECT_EQ(voice.gate.length, beat);
    EXPECT_EQ(voice.shot.end, kOpenEnded);
    EXPECT_EQ(voice.shot.length, kOpenEnded);
}

TEST(Position, EngineBehindTheGraphHasNoSkew) {
    VoiceRig rig(48000);
    rig.laySound(0, ramp(20000));
    rig.context.running = 1;
    rig.cycle(1024);
    rig.position = 50000;
    rig.sequence(60, 50, 960);
    rig.cycle(1024);
    expectSilence(rig.audio[0], 0, 1250 - 1024 + 1);
    EXPECT_EQ(loopFrameOf(rig, 1350 - 1024), 100);
}

TEST(Position, KeyIsAskedForAtTheMiddleOfTheBlockAsTheGraphCounts) {
    struct KeyLog : FakeSynthContext {
        std::vector<std::int64_t> asked;
        std::uint32_t GetKeyAtTime(std::int64_t ticks16) override {
            asked.push_back(ticks16);
            return 0;
        }
    };
    KeyLog context;
    context.rate = 48000;
    context.running = 1;
    EngineUnderTest engine(context);
    engine.inputFormat = floatFormat(48000, 1);
    PinBuffer input{1001, 0, nullptr, nullptr, 1};
    engine.ProcessBlock(24000, &input, nullptr, 0, 0, nullptr);
    engine.ProcessBlock(48000, &input, nullptr, 0, 0, nullptr);
    // 24500 and 48500 frames, at 24000 frames to the beat.
    EXPECT_EQ(context.asked, (std::vector<std::int64_t>{64225280, 127139840}));
}

TEST(Position, FarOutPositionsDoNoHarm) {
    for (const std::int64_t position : {INT64_MIN, INT64_MAX, INT64_MAX - 100, std::int64_t{-1}}) {
        VoiceRig rig(48000);
        rig.layLoop(0, ramp(24000), 1);
        rig.laySound(1, ramp(2000));
        rig.context.tempo = 1e-3;
        rig.noteOn(60);
        rig.noteOn(62);
        rig.engine.AuditionPad(0, -1);
        for (int i = 0; i < 3; ++i) {
            std::vector<PinBuffer> pins{{512, rig.context.pinIds[0], nullptr, nullptr, 1}};
            std::vector<float> memory(512);
            pins[0].data = memory.data();
            PinBuffer input{512, 0, nullptr, nullptr, 1};
            rig.context.running = i == 2;
            EXPECT_EQ(rig.engine.ProcessBlock(position, &input, pins.data(), 1, 0, &rig.notes), S_OK);
        }
    }
}

}  // namespace
}  // namespace marnoth::test::block_frame_test
