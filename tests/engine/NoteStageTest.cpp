#include <gtest/gtest.h>

#include "engine/VoiceRig.h"

namespace marnoth::test::note_stage_test {
namespace {

constexpr std::int32_t kBlock = 1024;

/// A one-shot pad on key 60.
struct OneShot : VoiceRig {
    explicit OneShot(std::uint32_t looping, std::int64_t frames = 20000) {
        laySound(0, ramp(frames));
        engine.SetPadLooping(0, looping);
    }
    float loudestOfBlock() {
        cycle(kBlock);
        return peak(audio[0]);
    }
};

TEST(OneShotPad, PlaysOnBehindItsNoteOff) {
    OneShot rig(0, 5000);
    rig.noteOn(60);
    rig.cycle(kBlock);
    rig.noteOff(60);
    expectFrames(rig.play(4 * kBlock, kBlock), 0, 5000 - kBlock,
                 [](std::int64_t i) { return rampAt(kBlock + i); });
}

TEST(OneShotPad, SecondNoteSwitchesALoopOff) {
    OneShot rig(1);
    rig.noteOn(60);
    rig.cycle(kBlock);
    rig.noteOff(60);
    EXPECT_GT(rig.loudestOfBlock(), 0);
    rig.noteOn(60);
    EXPECT_GT(rig.loudestOfBlock(), 0);  // the old note's turn came before the new one's
    EXPECT_GT(rig.loudestOfBlock(), 0);  // its last block, fading
    EXPECT_EQ(rig.loudestOfBlock(), 0);
    EXPECT_FALSE(rig.isPlaying(0));
}

TEST(OneShotPad, SwitchedOffLoopOfAHeldNoteFadesToTheEndOfItsLastBlock) {
    VoiceRig rig;
    rig.laySound(0, constant(20000));
    rig.engine.SetPadLooping(0, 1);
    rig.noteOn(60);
    rig.cycle(kBlock);
    rig.noteOn(60);
    rig.cycle(kBlock);
    rig.cycle(kBlock);
    expectFrames(rig.audio[0], 0, kBlock - 882, [](std::int64_t) { return 1.0; });
    expectFrames(
        rig.audio[0], kBlock - 882, kBlock,
        [](std::int64_t i) { return (kBlock - static_cast<double>(i)) / 882; }, 1e-5);
    rig.cycle(kBlock);
    expectSilence(rig.audio[0], 0, kBlock);
}

TEST(OneShotPad, SwitchedOffLoopFadesFromTheStartOfABlockThatIsTooShort) {
    VoiceRig rig;
    rig.laySound(0, constant(20000));
    rig.engine.SetPadLooping(0, 1);
    rig.noteOn(60);
    rig.cycle(256);
    rig.noteOn(60);
    rig.cycle(256);
    rig.cycle(256);
    expectFrames(
        rig.audio[0], 0, 256, [](std::int64_t i) { return (256 - static_cast<double>(i)) / 882; }, 1e-5);
    rig.cycle(256);
    expectSilence(rig.audio[0], 0, 256);
}

TEST(OneShotPad, NotesOfASwitchedOffLoopLeaveTheQueue) {
    OneShot rig(1);
    for (int press = 0; press < 2; ++press) {
        rig.noteOn(60);
        rig.cycle(kBlock);
        rig.noteOff(60);
        rig.cycle(kBlock);
    }
    rig.play(3 * kBlock, kBlock);
    EXPECT_TRUE(rig.notes.empty());
}

TEST(OneShotPad, ThirdNoteSwitchesTheLoopOnAgainFromItsStart) {
    OneShot rig(1);
    for (int press = 0; press < 2; ++press) {
        rig.noteOn(60);
        rig.play(4 * kBlock, kBlock);
        rig.noteOff(60);
        rig.play(2 * kBlock, kBlock);
    }
    EXPECT_EQ(rig.loudestOfBlock(), 0);
    rig.noteOn(60);
    rig.cycle(kBlock);
    expectFrames(rig.audio[0], 44, kBlock, [](std::int64_t i) { return rampAt(i); });
}

TEST(OneShotPad, SecondNoteRestartsOneThatDoesNotLoop) {
    OneShot rig(0, 3000);
    rig.noteOn(60);
    rig.play(4 * kBlock, kBlock);
    rig.noteOff(60);
    rig.noteOn(60);
    rig.cycle(kBlock);
    expectFrames(rig.audio[0], 44, kBlock, [](std::int64_t i) { return rampAt(i); });
}

TEST(OneShotPad, NotesOnOnePadSoundTogether) {
    OneShot rig(0);
    rig.noteOn(60);
    rig.cycle(kBlock);
    rig.noteOn(60);
    rig.cycle(kBlock);
    expectFrames(rig.audio[0], 44, kBlock, [](std::int64_t i) { return rampAt(i) + rampAt(kBlock + i); });
}

TEST(OneShotPad, NoteThatHoldsItsGateWaitsSilentlyUntilALaterNoteTakesIt) {
    OneShot rig(0, 3000);
    rig.noteOn(60);
    rig.cycle(kBlock);
    rig.noteOff(60);
    rig.play(4 * kBlock, kBlock);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(rig.loudestOfBlock(), 0);
    ASSERT_EQ(rig.notes.size(), 1u);
    const VoiceState* first = rig.notes.front().voice;
    rig.noteOn(60);
    rig.play(3 * kBlock, kBlock);
    ASSERT_EQ(rig.notes.size(), 1u);
    EXPECT_NE(rig.notes.front().voice, first);
}

TEST(OneShotPad, NoteThatHoldsItsGateGoesWithTheTransport) {
    OneShot rig(1);
    rig.noteOn(60);
    rig.cycle(kBlock);
    rig.noteOff(60);
    rig.cycle(kBlock);
    rig.engine.ResetVoices();
    rig.play(3 * kBlock, kBlock);
    EXPECT_TRUE(rig.notes.empty());
    EXPECT_EQ(rig.loudestOfBlock(), 0);
}

TEST(OneShotPad, NoteClosedAsItOpensAtTimeZeroIsSilent) {
    OneShot rig(0);
    rig.noteOn(60);
    rig.noteOff(60);
    EXPECT_EQ(rig.loudestOfBlock(), 0);
}

TEST(OneShotPad, NoteWhoseFadeWouldEndBehindItHasOneMoreBlock) {
    OneShot rig(0);
    rig.noteOn(60);
    rig.cycle(2048);
    rig.noteOff(60);
    rig.noteOn(60);
    rig.cycle(2048);
    // The second note holds the gate now, and the graph has gone back: the first note's fade, from 3000 to
    // 3882, lies before the 4096 that it has come to.
    rig.position = 3000;
    rig.cycle(2048);
    expectFrames(rig.audio[0], 0, 2048, [](std::int64_t i) { return rampAt(3000 + i) + rampAt(952 + i); });
}

TEST(OneShotPad, StopPadIgnoresItAndStopPadOfAllStopsIt) {
    OneShot rig(1);
    rig.noteOn(60);
    rig.cycle(kBlock);
    EXPECT_EQ(rig.engine.StopPad(0), S_OK);
    rig.cycle(kBlock);
    EXPECT_GT(rig.loudestOfBlock(), 0);
    EXPECT_EQ(rig.engine.StopPad(-1), S_OK);
    EXPECT_EQ(rig.loudestOfBlock(), 0);
    EXPECT_EQ(rig.loudestOfBlock(), 0);
    EXPECT_TRUE(rig.notes.empty());
}

TEST(StopAll, LastsOneBlock) {
    OneShot rig(0);
    rig.engine.StopPad(-1);
    rig.cycle(kBlock);
    rig.noteOn(60);
    EXPECT_GT(rig.loudestOfBlock(), 0);
}

TEST(GatedPad, EndsWithItsNote) {
    OneShot rig(1);
    rig.engine.SetPadOneShot(0, 0);
    rig.noteOn(60);
    rig.play(30 * kBlock, kBlock);
    EXPECT_GT(rig.loudestOfBlock(), 0);
    rig.noteOff(60);
    EXPECT_GT(rig.loudestOfBlock(), 0);
    EXPECT_EQ(rig.loudestOfBlock(), 0);
    EXPECT_TRUE(rig.notes.empty());
}

TEST(GatedPad, NoteHoldsNoGateShouldThePadBecomeAOneShot) {
    OneShot rig(1);
    rig.engine.SetPadOneShot(0, 0);
    rig.noteOn(60);
    EXPECT_GT(rig.loudestOfBlock(), 0);
    rig.engine.SetPadOneShot(0, 1);
    EXPECT_EQ(rig.loudestOfBlock(), 0);
}

TEST(GatedPad, NoteRemembersHowThePadsGateStood) {
    OneShot rig(1);
    rig.noteOn(60);
    rig.cycle(kBlock);
    rig.noteOn(60);  // switches the loop off; the first note has a last block to come
    rig.cycle(kBlock);
    rig.engine.SetPadOneShot(0, 0);
    rig.noteOn(60);
    rig.cycle(kBlock);
    // The gate was shut before the third note as well, so nothing has just been switched off.
    rig.engine.SetPadOneShot(0, 1);
    EXPECT_EQ(rig.loudestOfBlock(), 0);
}

TEST(GatedPad, NoteEndedInItsFirstBlockHasThatBlock) {
    OneShot rig(0);
    rig.engine.SetPadOneShot(0, 0);
    rig.position = 4096;
    rig.noteOn(60);
    rig.noteOff(60);
    EXPECT_GT(rig.loudestOfBlock(), 0);
    EXPECT_EQ(rig.loudestOfBlock(), 0);
}

TEST(OneNote, SoundsAGatedAndAOneShotPadAtOnceEachToItsOwnEnd) {
    VoiceRig rig;
    rig.laySound(0, constant(40000, 0.25f));
    rig.laySound(1, constant(4 * kBlock, 0.5f));
    rig.engine.SetPadOneShot(0, 0);
    const KeyMapRecord both{1, 60, 60, 60, 0, 127};
    rig.engine.SetKeyMapEntry(&both);
    rig.noteOn(60);
    rig.cycle(kBlock);
    expectFrames(rig.audio[0], 44, kBlock, [](std::int64_t) { return 0.75; });
    rig.noteOff(60);
    rig.cycle(kBlock);
    rig.cycle(kBlock);
    expectFrames(rig.audio[0], 0, kBlock, [](std::int64_t) { return 0.5; });
    rig.cycle(kBlock);
    rig.cycle(kBlock);
    expectSilence(rig.audio[0], 0, kBlock);
}

TEST(OneNote, WithoutAPadKeepsItsVoiceAndMovesItsPositions) {
    VoiceRig rig(48000);
    QueuedEvent& note = rig.noteOn(20);
    rig.cycle(480);
    const VoiceState before = *note.voice;
    rig.cycle(480);
    const VoiceState& after = *note.voice;
    EXPECT_EQ(before.gate.position, 480 * 62914560LL / 24000);
    EXPECT_EQ(after.gate.position, 960 * 62914560LL / 24000);
    EXPECT_EQ(after.shot.position, after.gate.position);
    EXPECT_EQ(after.gate.end, before.gate.end);
    EXPECT_EQ(after.shot.end, before.shot.end);
    EXPECT_EQ(after.stopRequest + after.releasing + after.startPending, 0u);
    EXPECT_EQ(after.finished, 1u);
}

/// 16.16 ticks of so many frames at 48000 Hz and 120 beats per minute, to the nearest.
std::int64_t ticksOf(std::int64_t frames) {
    return (frames * 62914560 + 12000) / 24000;
}

TEST(OneNote, NoteOffEndsTheGateLaneAndGivesTheShotLane20Milliseconds) {
    VoiceRig rig(48000);
    QueuedEvent& note = rig.noteOn(20);
    rig.cycle(480);
    rig.noteOff(20);
    rig.cycle(480);
    EXPECT_EQ(std::uint32_t{note.event.duration}, kDurationReleased);
    EXPECT_EQ(note.voice->releasing, 1u);
    EXPECT_EQ(note.voice->gate.end, 0);
    EXPECT_EQ(note.voice->gate.length, 0);
    EXPECT_EQ(note.voice->shot.end, ticksOf(480 + 960));
    EXPECT_EQ(note.voice->shot.length, ticksOf(480 + 960));
}

TEST(OneNote, IsReleasedInTheBlockThatBeginsAtItsEnd) {
    VoiceRig rig(48000);
    QueuedEvent& note = rig.sequence(20, 0, 48);  // 1200 frames
    rig.cycle(1200);
    EXPECT_EQ(note.voice->gate.position, note.voice->gate.end);
    EXPECT_EQ(note.voice->releasing, 0u);
    rig.cycle(480);
    EXPECT_EQ(note.voice->releasing, 1u);
    EXPECT_EQ(note.voice->gate.end, 0);
}

TEST(OneNote, ShotLaneThatWouldEndBehindItsPositionLastsABlockLonger) {
    VoiceRig rig(48000);
    QueuedEvent& note = rig.noteOn(20);
    rig.cycle(4800);
    rig.noteOff(20);
    rig.position = 3600;
    rig.drain();
    rig.block(480);
    const std::int64_t end = ticksOf(3600 + 960) + ticksOf(3600 + 480) - ticksOf(3600);
    EXPECT_EQ(note.voice->shot.end, end);
    EXPECT_EQ(note.voice->shot.length, end);
}

TEST(OneNote, OnAnEmptyPadClearsItsGate) {
    OneShot rig(1);
    rig.noteOn(60);
    rig.cycle(kBlock);
    rig.noteOff(60);
    std::int32_t count = 0;
    rig.engine.GetGrainCount(kPadLoop, 0, &count);
    ASSERT_EQ(count, 1);
    rig.engine.DeleteGrain(0, 0, 0);
    rig.noteOn(60);
    rig.cycle(kBlock);
    rig.noteOff(60);
    rig.play(3 * kBlock, kBlock);
    // With the gate forgotten the pad starts afresh, where a latched one would be switched off.
    rig.laySound(0, ramp(9000));
    rig.engine.SetPadLooping(0, 1);
    rig.noteOn(60);
    rig.cycle(kBlock);
    expectFrames(rig.audio[0], 44, kBlock, [](std::int64_t i) { return rampAt(i); });
}

TEST(OneNote, PlaysTransposedByItsDistanceFromTheRoot) {
    VoiceRig rig;
    rig.laySound(0, ramp(20000));
    const KeyMapRecord wide{0, 0, 127, 60, 0, 127};
    rig.engine.SetKeyMapEntry(&wide);
    rig.noteOn(72);
    rig.cycle(kBlock);
    // An octave up is twice the speed; a line stays a line under linear interpolation.
    expectFrames(rig.audio[0], 44, kBlock, [](std::int64_t i) { return rampAt(2 * i); });
}

TEST(OneNote, MaySoundBeforeTimeZero) {
    OneShot rig(0);
    rig.position = -5000;
    rig.noteOn(60);
    EXPECT_GT(rig.loudestOfBlock(), 0);
}

}  // namespace
}  // namespace marnoth::test::note_stage_test
