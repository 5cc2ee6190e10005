#include <gtest/gtest.h>

#include "engine/VoiceRig.h"

namespace marnoth::test::phase_test {
namespace {

/// Two synced loops of a beat, 24000 frames at 48000 Hz and 120 beats per minute; the second lies on channel
/// 2, whose sound is told from the first's by its pin.
struct SyncedPads : VoiceRig {
    SyncedPads() : VoiceRig(48000) {
        for (std::int32_t pad = 0; pad < 2; ++pad) {
            layLoop(pad, ramp(24000), 1);
            engine.SetPadOutput(pad, static_cast<std::uint32_t>(pad) + 1);
        }
    }
    /// Frame 100 of the next block is which frame of the loop on `pad`; -1 is silence.
    std::int64_t phase(std::int32_t pad) {
        cycle(480);
        return std::lround(audio[static_cast<std::size_t>(pad) + 1][100] * 131072.0) - 1;
    }
};

TEST(Phase, TransportRunningTheLoopsZeroIsTheProjects) {
    SyncedPads rig;
    rig.context.running = 1;
    rig.position = 24000 * 3 + 5000;
    rig.noteOn(60);
    EXPECT_EQ(rig.phase(0), 5100);
    EXPECT_EQ(rig.phase(0), 5580);
    rig.engine.AuditionPad(1, -1);
    EXPECT_EQ(rig.phase(1), 6060);
}

TEST(Phase, TransportStoppedTheFirstPadStartsTheLoopFromItsZero) {
    SyncedPads rig;
    rig.position = 5000;
    rig.noteOn(60);
    EXPECT_EQ(rig.phase(0), 100);
    EXPECT_EQ(rig.phase(0), 580);
}

TEST(Phase, TransportStoppedASequencedNoteSetsTheZeroWhereItBegins) {
    SyncedPads rig;
    rig.sequence(60, 20, 960);  // 500 frames
    rig.cycle(480);
    expectSilence(rig.audio[1], 0, 480);
    EXPECT_EQ(rig.phase(0), 480 + 100 - 500);
}

TEST(Phase, TransportStoppedPadsThatFollowCountFromTheFirst) {
    SyncedPads rig;
    rig.position = 5000;
    rig.noteOn(60);
    rig.phase(0);
    rig.noteOn(62);
    EXPECT_EQ(rig.phase(1), 580);
    EXPECT_EQ(rig.phase(1), 1060);
}

TEST(Phase, PressedPadsFollowTheSameZero) {
    SyncedPads rig;
    rig.position = 5000;
    rig.engine.AuditionPad(0, -1);
    EXPECT_EQ(rig.phase(0), 100);
    rig.engine.AuditionPad(1, -1);
    EXPECT_EQ(rig.phase(1), 580);
    rig.noteOn(60);
    EXPECT_EQ(rig.phase(1), 1060);
}

TEST(Phase, WhenNothingSoundsTheNextPadSetsItAnew) {
    SyncedPads rig;
    rig.position = 5000;
    rig.noteOn(60);
    rig.phase(0);
    rig.engine.StopPad(-1);
    rig.play(4800, 480);
    rig.noteOn(62);
    EXPECT_EQ(rig.phase(1), 100);
}

TEST(Phase, UnsyncedPadFromThePageClearsTheZero) {
    SyncedPads rig;
    rig.laySound(2, constant(20000));
    rig.position = 5000;
    rig.engine.AuditionPad(0, -1);
    rig.phase(0);
    rig.engine.AuditionPad(2, -1);
    rig.phase(0);
    rig.engine.AuditionPad(1, -1);
    // Counted from tick 0 again: the block starts at 5000 + 2 * 480.
    EXPECT_EQ(rig.phase(1), 5960 + 100);
}

TEST(Phase, StoppingTheGraphClearsTheZero) {
    SyncedPads rig;
    rig.position = 5000;
    rig.engine.AuditionPad(0, -1);
    rig.phase(0);
    rig.engine.ClearPhaseAnchor();
    rig.engine.AuditionPad(1, -1);
    EXPECT_EQ(rig.phase(1), 5480 + 100);
}

TEST(Phase, ResetVoicesKeepsTheZero) {
    SyncedPads rig;
    rig.laySound(2, constant(20000));
    rig.position = 5000;
    rig.engine.AuditionPad(0, -1);
    rig.phase(0);
    rig.engine.ResetVoices();
    // While another pad sounds, a synced one takes the zero as it stands; a note of an unsynced pad leaves it
    // alone.
    rig.noteOn(64);
    rig.cycle(480);
    rig.noteOn(60);
    EXPECT_EQ(rig.phase(0), 2 * 480 + 100);
}

TEST(Phase, AfterResetVoicesTheFirstPadSetsTheZeroAnew) {
    SyncedPads rig;
    rig.position = 5000;
    rig.engine.AuditionPad(0, -1);
    rig.phase(0);
    rig.engine.ResetVoices();
    rig.noteOn(60);
    EXPECT_EQ(rig.phase(0), 100);
}

TEST(Phase, SyncedPadWithoutALoopSoundsOnlyInTheProjectsFirstLoopLength) {
    SyncedPads rig;
    rig.engine.SetPadLooping(0, 0);
    rig.context.running = 1;
    rig.position = 12000;
    rig.noteOn(60);
    EXPECT_EQ(rig.phase(0), 12100);
    rig.play(12000 - 480, 480);
    EXPECT_EQ(peak(rig.play(4800, 480, 1)), 0);
}

TEST(Phase, SyncedPadWithoutALoopIsSilentBehindTheProjectsFirstLoopLength) {
    SyncedPads rig;
    rig.engine.SetPadLooping(0, 0);
    rig.context.running = 1;
    rig.position = 24000;
    rig.noteOn(60);
    EXPECT_EQ(peak(rig.play(48000, 480, 1)), 0);
}

TEST(Phase, SyncedPadWithoutALoopIsSilentBeforeTheProjectsZero) {
    SyncedPads rig;
    rig.engine.SetPadLooping(0, 0);
    rig.context.running = 1;
    rig.position = -24000 - 100;
    rig.noteOn(60);
    EXPECT_EQ(peak(rig.play(24000, 480, 1)), 0);
    EXPECT_GT(peak(rig.play(480, 480, 1)), 0);
}

TEST(Phase, TransportStoppedASyncedPadWithoutALoopMissesItsFirstBlock) {
    SyncedPads rig;
    rig.engine.SetPadLooping(0, 0);
    rig.position = 5000;
    rig.noteOn(60);
    rig.cycle(480);
    expectSilence(rig.audio[1], 0, 480);
    EXPECT_EQ(rig.phase(0), 580);
    rig.play(24000 - 2 * 480, 480);
    EXPECT_EQ(peak(rig.play(4800, 480, 1)), 0);
}

TEST(Phase, NoteWhileTheTransportRunsClearsTheZero) {
    SyncedPads rig;
    rig.position = 5000;
    rig.engine.AuditionPad(0, -1);
    rig.phase(0);
    rig.engine.ResetVoices();
    rig.context.running = 1;
    rig.noteOn(60);
    rig.cycle(480);
    rig.context.running = 0;
    rig.noteOn(62);
    EXPECT_EQ(rig.phase(1), 5000 + 2 * 480 + 100);
}

TEST(Phase, NoteOfAnUnsyncedPadPutsThePadBackOnTheProjectsZero) {
    SyncedPads rig;
    rig.engine.SetPadOneShot(0, 0);
    rig.position = 5000;
    rig.noteOn(60);
    EXPECT_EQ(rig.phase(0), 100);
    rig.engine.SetPadSynced(0, 0);
    rig.noteOff(60);
    rig.noteOn(60);
    rig.cycle(480);
    rig.engine.SetPadSynced(0, 1);
    EXPECT_EQ(rig.phase(0), 5000 + 2 * 480 + 100);
}

TEST(Phase, StartFollowsATempoChange) {
    SyncedPads rig;
    rig.context.running = 1;
    rig.noteOn(60);
    rig.play(12000, 480);
    // The engine stands at sample 12000, which is now a quarter of the loop's beat.
    rig.context.tempo = 60;
    rig.cycle(480);
    EXPECT_GT(peak(rig.audio[1]), 0);
    // The second grain begins there.
    EXPECT_NEAR(rig.audio[1][0], rampAt(6000), 1e-6);
}

}  // namespace
}  // namespace marnoth::test::phase_test
