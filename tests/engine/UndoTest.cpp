#include "engine/EditRig.h"

namespace marnoth::test::undo_test {
namespace {

using Sampler = IGrooveSampler;

TEST(Undo, OnAFreshEngineThereIsNothingToDo) {
    EditRig rig;
    EXPECT_EQ(rig.engine.Undo(), S_FALSE);
    EXPECT_EQ(rig.engine.Redo(), S_FALSE);
}

TEST(Undo, BringsThePadsBackAndRedoThePresent) {
    EditRig rig;
    rig.engine.SetPadVolume(3, 0.25f);
    EXPECT_EQ(rig.engine.PushUndoState(), S_OK);
    rig.engine.SetPadVolume(3, 0.75f);
    EXPECT_EQ(rig.engine.Undo(), S_OK);
    EXPECT_EQ(rig.get(&Sampler::GetPadVolume, 3), 0.25f);
    EXPECT_EQ(rig.engine.Undo(), S_FALSE);
    EXPECT_EQ(rig.engine.Redo(), S_OK);
    EXPECT_EQ(rig.get(&Sampler::GetPadVolume, 3), 0.75f);
    EXPECT_EQ(rig.engine.Redo(), S_FALSE);
}

TEST(Undo, APushForgetsWhatCouldHaveBeenRedone) {
    EditRig rig;
    rig.engine.PushUndoState();
    rig.engine.SetPadVolume(0, 0.5f);
    rig.engine.PushUndoState();
    rig.engine.SetPadVolume(0, 0.25f);
    rig.engine.Undo();
    rig.engine.Undo();
    EXPECT_EQ(rig.get(&Sampler::GetPadVolume, 0), 1.0f);
    rig.engine.PushUndoState();
    EXPECT_EQ(rig.engine.Redo(), S_FALSE);
    EXPECT_EQ(rig.engine.Undo(), S_OK);
    EXPECT_EQ(rig.engine.Undo(), S_FALSE);
}

/// Pushes states of root note 0, 1, ... `pushes` - 1 of pad 0, and leaves it at `pushes`.
void pushStates(EditRig& rig, std::int32_t pushes) {
    rig.engine.SetPadRootNote(0, 0);
    for (std::int32_t i = 0; i < pushes; ++i) {
        rig.engine.PushUndoState();
        rig.engine.SetPadRootNote(0, (i + 1) % 128);
    }
}

TEST(Undo, After128PushesTheOldestStateIsStillThere) {
    EditRig rig;
    pushStates(rig, 128);
    for (int i = 0; i < 128; ++i) ASSERT_EQ(rig.engine.Undo(), S_OK) << i;
    EXPECT_EQ(rig.get(&Sampler::GetPadRootNote, 0), 0);
    EXPECT_EQ(rig.engine.Undo(), S_FALSE);
}

TEST(Undo, After129PushesTheOldestStateIsGoneAnd128UndosReachTheOldestRemaining) {
    EditRig rig;
    pushStates(rig, 129);
    for (int i = 0; i < 128; ++i) ASSERT_EQ(rig.engine.Undo(), S_OK) << i;
    EXPECT_EQ(rig.get(&Sampler::GetPadRootNote, 0), 1);
    EXPECT_EQ(rig.engine.Undo(), S_FALSE);
    for (int i = 0; i < 128; ++i) ASSERT_EQ(rig.engine.Redo(), S_OK) << i;
    EXPECT_EQ(rig.get(&Sampler::GetPadRootNote, 0), 129 % 128);
    EXPECT_EQ(rig.engine.Redo(), S_FALSE);
}

TEST(Undo, GoesRoundTheRingManyTimes) {
    EditRig rig;
    pushStates(rig, 1000);
    for (std::int32_t i = 999; i > 999 - 128; --i) {
        ASSERT_EQ(rig.engine.Undo(), S_OK);
        ASSERT_EQ(rig.get(&Sampler::GetPadRootNote, 0), i % 128);
    }
    EXPECT_EQ(rig.engine.Undo(), S_FALSE);
}

TEST(Undo, NotesGoToThePadsThatCameBack) {
    EditRig rig;
    rig.lay(0, loopFile(1));
    rig.engine.PushUndoState();
    rig.engine.DeleteGrain(0, 0, 0);
    for (int i = 0; i < 3; ++i) rig.engine.DeleteGrain(0, 0, 0);
    rig.engine.Undo();
    QueuedEvent note;
    note.event = {.note = 60, .velocity = 100, .duration = kDurationOpen};
    ASSERT_EQ(rig.engine.CreateVoice(&note), S_OK);
    rig.notes.push_back(note);
    float loudest = 0;
    for (const float value : rig.render(4410)) loudest = std::max(loudest, std::abs(value));
    EXPECT_GT(loudest, 0.1f);
    EXPECT_EQ(rig.get(&Sampler::GetPadPlaying, 0), 1u);
    rig.engine.ReleaseVoice(&rig.notes.back(), 1);
    // A pad that was taken over is one that the page's own changes reach.
    EXPECT_EQ(rig.engine.SetPadVolume(0, 0.5f), S_OK);
}

TEST(Undo, SoloOfThePadsThatCameBackCounts) {
    EditRig rig;
    rig.lay(0, loopFile(1));
    rig.engine.PushUndoState();
    rig.engine.SetPadSolo(5, 1);
    rig.engine.Undo();
    rig.engine.AuditionPad(0, -1);
    rig.block(512);
    EXPECT_EQ(rig.get(&Sampler::GetPadPlaying, 0), 1u) << "no pad is soloed any more";
    rig.engine.Redo();
    rig.block(512);
    EXPECT_EQ(rig.get(&Sampler::GetPadPlaying, 0), 0u) << "solo of pad 5 came back";
}

TEST(Undo, ASnapshotKeepsTheSampleOfAFileThatWasRemoved) {
    EditRig rig;
    rig.lay(0, loopFile(1));
    rig.engine.PushUndoState();
    rig.engine.RemoveBinFile(0);
    EXPECT_EQ(rig.count(kPadLoop, 0), 0);
    rig.engine.Undo();
    EXPECT_EQ(rig.count(kPadLoop, 0), 4);
    EXPECT_NE(rig.padGrains(0)[0].plotData, nullptr);
}

TEST(ClearProject, EmptiesPadsBinAndUndo) {
    EditRig rig;
    rig.lay(0, loopFile(2));
    rig.engine.PushUndoState();
    for (const auto set : {&Sampler::SetPadMute, &Sampler::SetPadSolo}) (rig.engine.*set)(4, 1);
    rig.engine.SetPadOneShot(4, 0);
    rig.engine.SetPadChannel(4, 3);
    rig.engine.SetPadOutput(4, 2);
    rig.engine.SetPadVolume(4, 0.5f);
    EXPECT_EQ(rig.engine.ClearProject(), S_OK);
    EXPECT_EQ(rig.binFiles(), 0);
    EXPECT_EQ(rig.count(kPadLoop, 0), 0);
    EXPECT_EQ(rig.length(kPadLoop, 0), 0);
    EXPECT_EQ(rig.get(&Sampler::GetPadLooping, 0), 0u);
    EXPECT_EQ(rig.get(&Sampler::GetPadSynced, 0), 0u);
    EXPECT_EQ(rig.get(&Sampler::GetPadMute, 4), 0u);
    EXPECT_EQ(rig.get(&Sampler::GetPadSolo, 4), 0u);
    EXPECT_EQ(rig.get(&Sampler::GetPadOneShot, 4), 1u);
    EXPECT_EQ(rig.get(&Sampler::GetPadChannel, 4), -1);
    EXPECT_EQ(rig.get(&Sampler::GetPadOutput, 4), 0u);
    EXPECT_EQ(rig.get(&Sampler::GetPadVolume, 4), 0.5f) << "the level is none of its business";
    EXPECT_EQ(rig.engine.Undo(), S_FALSE);
}

TEST(ClearProject, ClearsSolo) {
    EditRig rig;
    rig.engine.SetPadSolo(9, 1);
    rig.engine.ClearProject();
    rig.lay(0, loopFile(1));
    rig.engine.AuditionPad(0, -1);
    rig.block(512);
    EXPECT_EQ(rig.get(&Sampler::GetPadPlaying, 0), 1u);
}

TEST(ClearProject, EndsEveryVoice) {
    EditRig rig;
    rig.engine.SetAuditionEnabled(1);
    rig.lay(0, loopFile(4));
    rig.engine.AuditionPad(0, -1);
    rig.engine.AuditionPad(0, 1);
    rig.engine.AuditionBinFile(0, -1);
    rig.block(64);
    rig.engine.ClearProject();
    for (const float value : rig.render(4410)) ASSERT_EQ(value, 0.0f);
}

}  // namespace
}  // namespace marnoth::test::undo_test
