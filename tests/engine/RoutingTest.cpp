#include <gtest/gtest.h>

#include "dsp/Stretch.h"
#include "engine/VoiceRig.h"

namespace marnoth::test::routing_test {
namespace {

constexpr std::int32_t kBlock = 512;

/// A steady sound on pad 0 whose note is held, with only some of the pins connected.
struct Routed : VoiceRig {
    Routed() { laySound(0, constant(20000)); }

    /// One block on the given pins, by index; gives each pin's loudest value.
    std::vector<float> blockOn(const std::vector<std::size_t>& indices) {
        std::vector<std::vector<float>> memory(indices.size(), std::vector<float>(kBlock));
        std::vector<PinBuffer> pins;
        for (std::size_t i = 0; i < indices.size(); ++i) {
            pins.push_back({kBlock, context.pinIds[indices[i]], nullptr, memory[i].data(), 1});
        }
        PinBuffer input{kBlock, 0, nullptr, nullptr, 1};
        engine.ProcessBlock(position, &input, pins.data(), static_cast<std::int32_t>(pins.size()), 0, &notes);
        position += kBlock;
        std::vector<float> peaks;
        for (const auto& pin : memory) peaks.push_back(peak(pin));
        return peaks;
    }
};

TEST(Output, PadPlaysOnItsChannelAndFromThereOnTheMix) {
    Routed rig;
    rig.engine.SetPadOutput(0, 3);
    rig.noteOn(60);
    EXPECT_EQ(rig.blockOn({0, 1, 2, 3, 4}), (std::vector<float>{1, 0, 0, 1, 0}));
}

TEST(Output, PadOnAChannelThatIsNotConnectedIsHeardOnTheMix) {
    Routed rig;
    rig.engine.SetPadOutput(0, 3);
    rig.noteOn(60);
    EXPECT_EQ(rig.blockOn({0, 1, 2}), (std::vector<float>{1, 0, 0}));
}

TEST(Output, WithoutAMixPinThePadIsPassedOverAndItsPositionAdvances) {
    VoiceRig whole;
    Routed rig;
    rig.laySound(0, ramp(20000));
    rig.noteOn(60);
    EXPECT_EQ(rig.blockOn({1, 2}), (std::vector<float>{0, 0}));
    rig.cycle(kBlock);
    expectFrames(rig.audio[0], 0, kBlock, [](std::int64_t i) { return rampAt(kBlock + i); });
}

TEST(Output, LastChannelWorksLikeTheOthers) {
    Routed rig;
    rig.engine.SetPadOutput(0, 16);
    rig.noteOn(60);
    EXPECT_EQ(rig.blockOn({0, 16}), (std::vector<float>{1, 1}));
}

TEST(Mute, MutedPadMakesNoSoundAndReportsAsPlaying) {
    VoiceRig rig;
    rig.laySound(0, ramp(20000));
    rig.engine.SetPadMute(0, 1);
    rig.noteOn(60);
    rig.cycle(kBlock);
    EXPECT_EQ(peak(rig.audio[0]), 0);
    EXPECT_TRUE(rig.isPlaying(0));
    rig.engine.SetPadMute(0, 0);
    rig.cycle(kBlock);
    expectFrames(rig.audio[0], 0, kBlock, [](std::int64_t i) { return rampAt(kBlock + i); });
}

TEST(Solo, PadWithoutItIsSilentAndReportsAsNotPlaying) {
    VoiceRig rig;
    rig.laySound(0, constant(20000, 0.25f));
    rig.laySound(1, constant(20000, 0.5f));
    rig.engine.SetPadSolo(1, 1);
    rig.noteOn(60);
    rig.noteOn(62);
    rig.cycle(kBlock);
    EXPECT_EQ(peak(rig.audio[0]), 0.5f);
    EXPECT_FALSE(rig.isPlaying(0));
    EXPECT_TRUE(rig.isPlaying(1));
    rig.engine.SetPadSolo(1, 0);
    rig.cycle(kBlock);
    EXPECT_EQ(peak(rig.audio[0]), 0.75f);
    EXPECT_TRUE(rig.isPlaying(0));
}

TEST(Solo, SilencesAuditionsOfTheBinToo) {
    VoiceRig rig;
    const std::int32_t bin = rig.laySound(0, constant(20000));
    rig.engine.SetPadSolo(5, 1);
    rig.engine.AuditionBinFile(bin, -1);
    rig.cycle(kBlock);
    EXPECT_EQ(peak(rig.audio[0]), 0);
}

TEST(Gain, VolumesAndPansOfPadAndGrainMultiply) {
    VoiceRig rig(44100, 2);
    rig.laySound(0, constant(2 * 20000));
    rig.engine.SetPadVolume(0, 1.5f);
    rig.engine.SetPadPan(0, 0.75f);
    rig.engine.SetGrainVolume(0, 0, 0.5f);
    rig.engine.SetGrainPan(0, 0, 0.75f);
    rig.noteOn(60);
    const auto audio = rig.play(kBlock, kBlock);
    for (std::size_t i = 50; i < kBlock; ++i) {
        ASSERT_FLOAT_EQ(audio[2 * i], 0.5f * 0.5f * 1.5f * 0.5f);
        ASSERT_FLOAT_EQ(audio[2 * i + 1], 1.5f * 0.5f);
    }
}

/// What a pad of one grain must sound like transposed by `semitones`: the grain rendered whole.
std::vector<float> transposed(const std::vector<float>& sound, std::int32_t semitones) {
    std::vector<float> wave = sound;
    wave.push_back(sound.back());
    StretchSource source;
    source.wave = {wave.data(), static_cast<std::int64_t>(sound.size()), 1};
    source.length = static_cast<std::int64_t>(sound.size());
    source.sampleRate = 44100;
    std::vector<float> expected(sound.size());
    renderShifted(source, {0, static_cast<std::int32_t>(sound.size()), 0}, {expected.data(), 1}, {1, 1},
                  semitones, 1.0);
    return expected;
}

void expectKeyOffset(std::uint32_t projectKey, std::int32_t rootNote, std::int32_t semitones) {
    VoiceRig rig;
    const auto sound = ramp(20000);
    rig.laySound(0, sound);
    rig.engine.SetPadFollowKey(0, 1);
    rig.engine.SetPadRootNote(0, rootNote);
    rig.context.key = projectKey;
    rig.noteOn(60);
    const auto expected = semitones ? transposed(sound, semitones) : sound;
    expectFrames(rig.play(4096, kBlock), 44, 4096,
                 [&](std::int64_t i) { return expected[static_cast<std::size_t>(i)]; });
}

TEST(FollowKey, ProjectKey2OnRoot9GoesUp5) {
    expectKeyOffset(2, 9, 5);
}

TEST(FollowKey, ProjectKey9OnRoot2GoesDown5) {
    expectKeyOffset(9, 2, -5);
}

TEST(FollowKey, HalfAnOctaveGoesDown) {
    expectKeyOffset(6, 0, -6);
    expectKeyOffset(0, 6, -6);
}

TEST(FollowKey, EqualKeysAreUntransposed) {
    expectKeyOffset(4, 4, 0);
}

TEST(FollowKey, NoProjectKeyOrNoRootIsUntransposed) {
    expectKeyOffset(0xFFFFFFFF, 4, 0);
    expectKeyOffset(4, -1, 0);
}

TEST(FollowKey, OctavesAreTakenOffOnceOnly) {
    expectKeyOffset(0, 30, -18);
}

TEST(FollowKey, KeyOffOrOutsideAnOctaveDoesNoHarm) {
    VoiceRig rig;
    rig.laySound(0, ramp(20000));
    rig.engine.SetPadFollowKey(0, 1);
    rig.engine.SetPadRootNote(0, 127);
    rig.engine.SetGrainTranspose(0, 0, INT32_MAX);
    for (const std::uint32_t key : {0x80000000u, 0x7FFFFFFFu}) {
        rig.context.key = key;
        rig.noteOn(60);
        rig.cycle(kBlock);
    }
}

TEST(FollowKey, PadThatDoesNotFollowKeepsItsPitch) {
    VoiceRig rig;
    rig.laySound(0, ramp(20000));
    rig.engine.SetPadRootNote(0, 2);
    rig.context.key = 9;
    rig.noteOn(60);
    rig.cycle(kBlock);
    expectFrames(rig.audio[0], 44, kBlock, [](std::int64_t i) { return rampAt(i); });
}

TEST(Transposition, GrainKeyAndNoteAddUp) {
    VoiceRig rig;
    const auto sound = ramp(20000);
    rig.laySound(0, sound);
    const KeyMapRecord wide{0, 0, 127, 60, 0, 127};
    rig.engine.SetKeyMapEntry(&wide);
    rig.engine.SetGrainTranspose(0, 0, 4);
    rig.engine.SetPadFollowKey(0, 1);
    rig.engine.SetPadRootNote(0, 2);
    rig.context.key = 5;
    rig.noteOn(58);
    const auto expected = transposed(sound, 4 + 3 - 2);
    expectFrames(rig.play(4096, kBlock), 44, 4096,
                 [&](std::int64_t i) { return expected[static_cast<std::size_t>(i)]; });
}

TEST(Transposition, OffsetsThatCancelPlayUntransposed) {
    VoiceRig rig;
    rig.laySound(0, ramp(20000));
    const KeyMapRecord wide{0, 0, 127, 60, 0, 127};
    rig.engine.SetKeyMapEntry(&wide);
    rig.engine.SetGrainTranspose(0, 0, 4);
    rig.noteOn(56);
    rig.cycle(kBlock);
    for (std::int64_t i = 44; i < kBlock; ++i)
        EXPECT_EQ(rig.audio[0][static_cast<std::size_t>(i)], rampAt(i));
}

}  // namespace
}  // namespace marnoth::test::routing_test
