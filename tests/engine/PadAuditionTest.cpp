#include <gtest/gtest.h>

#include "engine/VoiceRig.h"

namespace marnoth::test::pad_audition_test {
namespace {

constexpr std::int32_t kBlock = 1024;

TEST(PadFromThePage, OneShotLoopStartsWithOnePressAndEndsWithTheNext) {
    VoiceRig rig;
    rig.laySound(0, constant(3000));
    rig.engine.SetPadLooping(0, 1);
    rig.engine.AuditionPad(0, -1);
    expectFrames(rig.play(9 * kBlock, kBlock), 44, 9 * kBlock, [](std::int64_t) { return 1.0; });
    rig.engine.AuditionPad(0, -1);
    const auto audio = rig.play(2 * kBlock, kBlock);
    expectFrames(
        audio, 0, 882, [](std::int64_t i) { return (882.0 - static_cast<double>(i)) / 882; }, 1e-5);
    expectSilence(audio, 882, 2 * kBlock);
    EXPECT_FALSE(rig.isPlaying(0));
}

TEST(PadFromThePage, OneShotWithoutALoopStartsAfreshWithEachPress) {
    VoiceRig rig;
    rig.laySound(0, ramp(9000));
    rig.engine.AuditionPad(0, -1);
    rig.cycle(kBlock);
    rig.engine.AuditionPad(0, -1);
    rig.cycle(kBlock);
    expectFrames(rig.audio[0], 44, kBlock, [](std::int64_t i) { return rampAt(i); });
}

TEST(PadFromThePage, GatedPadEndsWithTheReleaseOfTheButton) {
    VoiceRig rig;
    rig.laySound(0, constant(30000));
    rig.engine.SetPadOneShot(0, 0);
    rig.engine.AuditionPad(0, -1);
    rig.cycle(kBlock);
    rig.engine.StopPad(0);
    const auto audio = rig.play(2 * kBlock, kBlock);
    expectFrames(
        audio, 0, 882, [](std::int64_t i) { return (882.0 - static_cast<double>(i)) / 882; }, 1e-5);
    expectSilence(audio, 882, 2 * kBlock);
}

TEST(PadFromThePage, GatedLoopStartsAfreshWithEachPress) {
    VoiceRig rig;
    rig.laySound(0, ramp(9000));
    rig.engine.SetPadOneShot(0, 0);
    rig.engine.SetPadLooping(0, 1);
    for (int press = 0; press < 2; ++press) {
        rig.engine.AuditionPad(0, -1);
        rig.cycle(kBlock);
        expectFrames(rig.audio[0], 44, kBlock, [](std::int64_t i) { return rampAt(i); });
    }
}

TEST(PadFromThePage, SecondReleaseOfTheButtonDoesNotLengthenTheFade) {
    VoiceRig rig;
    rig.laySound(0, constant(30000));
    rig.engine.SetPadOneShot(0, 0);
    rig.engine.AuditionPad(0, -1);
    rig.cycle(kBlock);
    for (int release = 0; release < 3; ++release) {
        rig.engine.StopPad(0);
        rig.cycle(441);
    }
    expectSilence(rig.audio[0], 0, 441);
}

TEST(PadFromThePage, OneShotIgnoresStopPadAndObeysStopPadOfAll) {
    VoiceRig rig;
    rig.laySound(0, constant(30000));
    rig.engine.AuditionPad(0, -1);
    rig.cycle(kBlock);
    rig.engine.StopPad(0);
    rig.cycle(kBlock);
    expectFrames(rig.audio[0], 0, kBlock, [](std::int64_t) { return 1.0; });
    rig.engine.StopPad(-1);
    rig.cycle(kBlock);
    expectSilence(rig.audio[0], 882, kBlock);
}

TEST(PadFromThePage, PlaysOnceAndThenReportsThatItDoesNot) {
    VoiceRig rig;
    rig.laySound(0, ramp(1500));
    rig.engine.AuditionPad(0, -1);
    const auto audio = rig.play(3 * kBlock, kBlock);
    expectFrames(audio, 44, 1500, [](std::int64_t i) { return rampAt(i); });
    expectSilence(audio, 1500, 3 * kBlock);
    rig.play(3 * kBlock, kBlock);
    EXPECT_FALSE(rig.isPlaying(0));
}

TEST(PadFromThePage, PlayedOutPadStaysSilentWhenItsLoopIsSwitchedOn) {
    VoiceRig rig;
    rig.laySound(0, ramp(1500));
    rig.engine.AuditionPad(0, -1);
    rig.play(5 * kBlock, kBlock);
    rig.engine.SetPadLooping(0, 1);
    EXPECT_EQ(peak(rig.play(3 * kBlock, kBlock)), 0);
}

TEST(PadFromThePage, GatedPadThatIsHeldWaitsForItsLoopBehindItsEnd) {
    VoiceRig rig;
    rig.laySound(0, ramp(1500));
    rig.engine.SetPadOneShot(0, 0);
    rig.engine.AuditionPad(0, -1);
    rig.play(5 * kBlock, kBlock);
    rig.engine.SetPadLooping(0, 1);
    expectFrames(rig.play(3 * kBlock, kBlock), 0, 3 * kBlock,
                 [](std::int64_t i) { return rampAt((5 * kBlock + i) % 1500); });
}

TEST(PadFromThePage, ReportsAsPlayingWhileItSounds) {
    VoiceRig rig;
    rig.laySound(0, ramp(9000));
    EXPECT_FALSE(rig.isPlaying(0));
    rig.engine.AuditionPad(0, -1);
    rig.cycle(kBlock);
    EXPECT_TRUE(rig.isPlaying(0));
    EXPECT_FALSE(rig.isPlaying(1));
}

TEST(PadFromThePage, ReportsAsPlayingInTheBlockThatBeginsAtItsEnd) {
    VoiceRig rig;
    rig.laySound(0, ramp(2 * kBlock));
    rig.engine.AuditionPad(0, -1);
    rig.play(3 * kBlock, kBlock);
    EXPECT_TRUE(rig.isPlaying(0));
    rig.cycle(kBlock);
    EXPECT_FALSE(rig.isPlaying(0));
}

TEST(PadFromThePage, PassesTheGateThatNotesShut) {
    VoiceRig rig;
    rig.laySound(0, constant(9000));
    rig.engine.AuditionPad(0, -1);
    rig.cycle(kBlock);
    expectFrames(rig.audio[0], 44, kBlock, [](std::int64_t) { return 1.0; });
}

TEST(PadFromThePage, EmptyPadStaysSilent) {
    VoiceRig rig;
    rig.engine.AuditionPad(3, -1);
    rig.cycle(kBlock);
    EXPECT_EQ(peak(rig.audio[0]), 0);
    EXPECT_FALSE(rig.isPlaying(3));
}

TEST(PadFromThePage, PadThatLosesItsGrainsReportsAsNotPlaying) {
    VoiceRig rig;
    rig.laySound(0, ramp(9000));
    rig.engine.AuditionPad(0, -1);
    rig.cycle(kBlock);
    EXPECT_TRUE(rig.isPlaying(0));
    rig.engine.DeleteGrain(0, 0, 0);
    rig.cycle(kBlock);
    EXPECT_FALSE(rig.isPlaying(0));
}

TEST(BinAudition, LoopsUntilStopped) {
    VoiceRig rig;
    const std::int32_t bin = rig.loadToBin(rig.waveOf(ramp(3000)));
    rig.engine.AuditionBinFile(bin, -1);
    expectFrames(rig.play(8 * kBlock, kBlock), 44, 8 * kBlock,
                 [](std::int64_t i) { return rampAt(i % 3000); });
    std::uint32_t playing = 0;
    rig.engine.GetBinPlaying(bin, &playing);
    EXPECT_EQ(playing, 1u);
    rig.engine.StopBinAudition(bin);
    rig.cycle(kBlock);
    EXPECT_EQ(peak(rig.audio[0]), 0);
    rig.engine.GetBinPlaying(bin, &playing);
    EXPECT_EQ(playing, 0u);
}

TEST(BinAudition, SetsNoPadsFlag) {
    VoiceRig rig;
    const std::int32_t bin = rig.loadToBin(rig.waveOf(ramp(3000)));
    rig.engine.AuditionBinFile(bin, -1);
    rig.cycle(kBlock);
    for (std::int32_t pad = 0; pad < 16; ++pad) EXPECT_FALSE(rig.isPlaying(pad));
}

TEST(BinAudition, SyncedLoopPlaysFromTheProjectsZeroWhateverThePressTime) {
    VoiceRig rig(48000);
    const std::int32_t bin = rig.loadToBin(rig.waveOf(ramp(24000)).acid({.beats = 1}));
    rig.position = 30000;
    rig.engine.AuditionBinFile(bin, -1);
    rig.cycle(480);
    expectFrames(rig.audio[0], 48, 480, [](std::int64_t i) { return rampAt(6000 + i); });
}

TEST(GrainAudition, PlaysTheGrainOnceForItsLength) {
    VoiceRig rig(48000);
    rig.layLoop(0, ramp(24000), 1);
    rig.engine.SetAuditionEnabled(1);
    rig.engine.AuditionPad(0, 2);
    const auto audio = rig.play(12288, kBlock);
    // The third grain; the end of the voice is known from its start, so it fades over its last 20 ms.
    expectFrames(audio, 48, 5040, [](std::int64_t i) { return rampAt(12000 + i); });
    EXPECT_GT(audio[5500], 0);
    expectSilence(audio, 6000, 12288);
}

TEST(GrainAudition, IsGivenOnlyWhenTheOptionIsOn) {
    VoiceRig rig(48000);
    rig.layLoop(0, ramp(24000), 1);
    rig.engine.SetAuditionEnabled(0);
    rig.engine.AuditionPad(0, 2);
    rig.cycle(kBlock);
    EXPECT_EQ(peak(rig.audio[0]), 0);
}

TEST(GrainAudition, FollowsThePadsOutputOnceThePadWasPlayed) {
    VoiceRig rig(48000);
    rig.layLoop(0, ramp(24000), 1);
    rig.engine.SetPadOutput(0, 4);
    rig.engine.SetAuditionEnabled(1);
    rig.engine.AuditionPad(0, -1);
    rig.engine.StopPad(-1);
    rig.play(8 * kBlock, kBlock);
    rig.engine.AuditionPad(0, 0);
    rig.cycle(kBlock);
    EXPECT_GT(peak(rig.audio[4]), 0);
}

TEST(ResetVoices, EndsEverythingAtOnce) {
    VoiceRig rig;
    const std::int32_t bin = rig.laySound(0, constant(30000));
    rig.engine.SetAuditionEnabled(1);
    rig.engine.AuditionPad(0, -1);
    rig.engine.AuditionPad(0, 0);
    rig.engine.AuditionBinFile(bin, -1);
    rig.cycle(kBlock);
    EXPECT_GT(peak(rig.audio[0]), 2.5f);
    rig.engine.ResetVoices();
    EXPECT_FALSE(rig.isPlaying(0));
    rig.cycle(kBlock);
    EXPECT_EQ(peak(rig.audio[0]), 0);
}

TEST(ResetVoices, PressBehindItStartsALoopThatPlayed) {
    VoiceRig rig;
    rig.laySound(0, constant(3000));
    rig.engine.SetPadLooping(0, 1);
    rig.engine.AuditionPad(0, -1);
    rig.cycle(kBlock);
    rig.engine.ResetVoices();
    rig.engine.AuditionPad(0, -1);
    expectFrames(rig.play(4 * kBlock, kBlock), 44, 4 * kBlock, [](std::int64_t) { return 1.0; });
}

}  // namespace
}  // namespace marnoth::test::pad_audition_test
