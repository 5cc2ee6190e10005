#include <stdexcept>
#include <thread>

#include "engine/EditRig.h"

namespace marnoth::test::grain_edits_test {
namespace {

using Sampler = IGrooveSampler;
using Starts = std::vector<std::int64_t>;

/// Pad 0 with a loop of two beats, cut into one grain per beat; all other pads are empty.
struct GrainEditsTest : testing::Test {
    void SetUp() override {
        WaveFile file;
        file.frames(44100, sine).acid({.flags = 2, .root = 60, .beats = 2}).strc(2);
        ASSERT_EQ(rig.lay(0, file).result, S_OK);
        ASSERT_EQ(rig.count(kPadLoop, 0), 2);
    }
    std::int32_t newIndex = 55;
    EditRig rig;
};

TEST_F(GrainEditsTest, DeletingClosesTheGapAtOnce) {
    EXPECT_EQ(rig.engine.DeleteGrain(0, 0, 0), S_OK);
    EXPECT_EQ(rig.starts(0), Starts{kBeat});
    EXPECT_EQ(rig.length(kPadLoop, 0), 2 * kBeat);
    EXPECT_EQ(rig.engine.DeleteGrain(0, 0, 0), S_OK);
    EXPECT_EQ(rig.length(kPadLoop, 0), 0);
}

TEST_F(GrainEditsTest, MarkedGrainsStayUntilTheCommit) {
    EXPECT_EQ(rig.engine.DeleteGrain(0, 0, 1), S_OK);
    EXPECT_EQ(rig.engine.DeleteGrain(0, 1, 1), S_OK);
    EXPECT_EQ(rig.count(kPadLoop, 0), 2);
    EXPECT_EQ(rig.engine.CommitGrainEdits(), S_OK);
    EXPECT_EQ(rig.count(kPadLoop, 0), 0);
    EXPECT_EQ(rig.length(kPadLoop, 0), 0);
}

TEST_F(GrainEditsTest, DeletingABadGrainIsAnInvalidArgument) {
    for (const std::uint32_t markOnly : {0u, 1u}) {
        EXPECT_EQ(rig.engine.DeleteGrain(0, 2, markOnly), E_INVALIDARG);
        EXPECT_EQ(rig.engine.DeleteGrain(0, -1, markOnly), E_INVALIDARG);
        EXPECT_EQ(rig.engine.DeleteGrain(16, 0, markOnly), E_INVALIDARG);
        EXPECT_EQ(rig.engine.DeleteGrain(-1, 0, markOnly), E_INVALIDARG);
    }
    EXPECT_EQ(rig.count(kPadLoop, 0), 2);
}

TEST_F(GrainEditsTest, AddingToAnEmptyPadMakesItALoopInSync) {
    EXPECT_EQ(rig.engine.AddGrain(0, 1, 4, 2 * kBeat), S_OK);
    EXPECT_EQ(rig.get(&Sampler::GetPadLooping, 4), 1u);
    EXPECT_EQ(rig.get(&Sampler::GetPadSynced, 4), 1u);
    EXPECT_EQ(rig.starts(4), Starts{2 * kBeat});
    EXPECT_EQ(rig.length(kPadLoop, 4), 3 * kBeat);
    EXPECT_EQ(rig.source(4, 0), std::make_pair(0, 1));
}

TEST_F(GrainEditsTest, AddingToAPadLeavesItsFlagsAndKeepsTheOrder) {
    rig.engine.SetPadLooping(0, 0);
    rig.engine.SetPadSynced(0, 0);
    EXPECT_EQ(rig.engine.AddGrain(0, 0, 0, kBeat), S_OK);
    EXPECT_EQ(rig.get(&Sampler::GetPadLooping, 0), 0u);
    EXPECT_EQ(rig.get(&Sampler::GetPadSynced, 0), 0u);
    EXPECT_EQ(rig.starts(0), (Starts{0, kBeat, kBeat}));
    EXPECT_EQ(rig.source(0, 1).second, 0) << "the new one comes first among equal starts";
    EXPECT_EQ(rig.engine.AddGrain(0, 0, 0, 2 * kBeat + 1), S_OK);
    EXPECT_EQ(rig.length(kPadLoop, 0), 4 * kBeat);
}

TEST_F(GrainEditsTest, ReplacingTakesThePlaceOfTheOldGrain) {
    rig.engine.SetGrainTranspose(0, 1, 7);
    EXPECT_EQ(rig.engine.ReplaceGrain(0, 1, 0, 0), S_OK);
    EXPECT_EQ(rig.starts(0), (Starts{0, kBeat}));
    EXPECT_EQ(rig.source(0, 1), std::make_pair(0, 0));
    EXPECT_EQ(rig.padGrains(0)[1].transpose, 0);
    EXPECT_EQ(rig.length(kPadLoop, 0), 2 * kBeat);
}

TEST_F(GrainEditsTest, ReplacingByALongerGrainGrowsTheLoop) {
    rig.load(plainFile(2.0));
    ASSERT_EQ(rig.binGrains(1)[0].endTicks, 4 * kBeat);
    EXPECT_EQ(rig.engine.ReplaceGrain(0, 1, 1, 0), S_OK);
    EXPECT_EQ(rig.length(kPadLoop, 0), 5 * kBeat);
}

TEST_F(GrainEditsTest, ReplacingTheOnlyGrainBeginsTheLoopAnew) {
    rig.engine.DeleteGrain(0, 0, 0);
    ASSERT_EQ(rig.length(kPadLoop, 0), 2 * kBeat);
    rig.engine.SetLoopLength(kPadLoop, 0, 7 * kBeat);
    EXPECT_EQ(rig.engine.ReplaceGrain(0, 0, 0, 0), S_OK);
    EXPECT_EQ(rig.starts(0), Starts{kBeat});
    EXPECT_EQ(rig.length(kPadLoop, 0), 2 * kBeat) << "the pad was empty in between";
    EXPECT_EQ(rig.get(&Sampler::GetPadLooping, 0), 1u);
}

TEST_F(GrainEditsTest, AddingAndReplacingRefuseABadPadOrFileAndRaiseForABadGrain) {
    EXPECT_EQ(rig.engine.AddGrain(1, 0, 0, 0), E_INVALIDARG);
    EXPECT_EQ(rig.engine.AddGrain(0, 0, 16, 0), E_INVALIDARG);
    EXPECT_EQ(rig.engine.ReplaceGrain(16, 0, 0, 0), E_INVALIDARG);
    EXPECT_EQ(rig.engine.ReplaceGrain(0, 0, -1, 0), E_INVALIDARG);
    EXPECT_THROW(rig.engine.AddGrain(0, 2, 0, 0), std::invalid_argument);
    EXPECT_THROW(rig.engine.AddGrain(0, 2, 9, 0), std::invalid_argument);
    EXPECT_THROW(rig.engine.ReplaceGrain(0, 2, 0, 0), std::invalid_argument);
    EXPECT_THROW(rig.engine.ReplaceGrain(0, 0, 0, -1), std::invalid_argument);
    EXPECT_EQ(rig.starts(0), (Starts{0, kBeat})) << "nothing was half done";
    EXPECT_EQ(rig.get(&Sampler::GetPadLooping, 9), 0u);
}

TEST_F(GrainEditsTest, MovingToAnEmptyPadTakesItsLoopAlong) {
    rig.engine.SetGrainTranspose(0, 1, -5);
    EXPECT_EQ(rig.engine.MoveGrain(0, 1, 5, 2 * kBeat, &newIndex, 1), S_OK);
    EXPECT_EQ(newIndex, -1);
    rig.engine.CommitGrainEdits();
    EXPECT_EQ(rig.starts(0), Starts{0});
    EXPECT_EQ(rig.starts(5), Starts{2 * kBeat});
    EXPECT_EQ(rig.padGrains(5)[0].transpose, -5);
    EXPECT_EQ(rig.source(5, 0), std::make_pair(0, 1));
    EXPECT_EQ(rig.length(kPadLoop, 5), 3 * kBeat) << "2 beats of the source, grown for the grain";
    EXPECT_EQ(rig.get(&Sampler::GetPadLooping, 5), 1u);
    EXPECT_EQ(rig.get(&Sampler::GetPadSynced, 5), 1u);
    EXPECT_EQ(rig.get(&Sampler::GetPadFollowKey, 5), 1u);
    EXPECT_EQ(rig.get(&Sampler::GetPadRootNote, 5), 6);
}

TEST_F(GrainEditsTest, MovingMarksTheSourceOrRemovesItAtOnce) {
    rig.engine.MoveGrain(0, 0, 5, 0, &newIndex, 1);
    EXPECT_EQ(rig.count(kPadLoop, 0), 2);
    rig.engine.MoveGrain(0, 1, 5, 0, &newIndex, 0);
    EXPECT_EQ(rig.count(kPadLoop, 0), 1);
    rig.engine.CommitGrainEdits();
    EXPECT_EQ(rig.count(kPadLoop, 0), 0);
    EXPECT_EQ(rig.count(kPadLoop, 5), 2);
}

TEST_F(GrainEditsTest, ATimeBelow0IsTheGrainsOwn) {
    rig.engine.MoveGrain(0, 1, 6, -1, &newIndex, 1);
    rig.engine.CopyGrain(0, 1, 7, -100, &newIndex);
    EXPECT_EQ(rig.starts(6), Starts{kBeat});
    EXPECT_EQ(rig.starts(7), Starts{kBeat});
}

TEST_F(GrainEditsTest, MovedGrainsComeInOrderWithTheCommit) {
    rig.engine.MoveGrain(0, 0, 0, kBeat + 5, &newIndex, 1);
    rig.engine.MoveGrain(0, 1, 0, 3, &newIndex, 1);
    EXPECT_EQ(rig.starts(0), (Starts{0, kBeat, kBeat + 5, 3}));
    rig.engine.CommitGrainEdits();
    EXPECT_EQ(rig.starts(0), (Starts{3, kBeat + 5}));
}

TEST_F(GrainEditsTest, MovingWithinThePadGrowsTheLoopOnlyFromItsEndOn) {
    // Its end would lie behind the loop's, but its start doesn't.
    rig.engine.MoveGrain(0, 0, 0, 2 * kBeat - 1, &newIndex, 1);
    EXPECT_EQ(rig.length(kPadLoop, 0), 2 * kBeat);
    rig.engine.MoveGrain(0, 1, 0, 2 * kBeat, &newIndex, 1);
    EXPECT_EQ(rig.length(kPadLoop, 0), 3 * kBeat);
}

TEST_F(GrainEditsTest, MovingToAnotherPadMayGrowItsLoopFromAnyTime) {
    rig.engine.AddGrain(0, 0, 3, 0);
    ASSERT_EQ(rig.length(kPadLoop, 3), kBeat);
    rig.engine.MoveGrain(0, 1, 3, 1, &newIndex, 1);
    EXPECT_EQ(rig.length(kPadLoop, 3), 2 * kBeat);
}

TEST_F(GrainEditsTest, TheOnlyGrainOfAPadCanMoveWithinIt) {
    rig.engine.DeleteGrain(0, 1, 0);
    rig.engine.MoveGrain(0, 0, 0, kBeat, &newIndex, 1);
    rig.engine.CommitGrainEdits();
    EXPECT_EQ(rig.starts(0), Starts{kBeat});
    EXPECT_EQ(rig.length(kPadLoop, 0), 2 * kBeat);
    rig.engine.MoveGrain(0, 0, 0, 0, &newIndex, 0);
    EXPECT_EQ(rig.starts(0), Starts{0});
    EXPECT_EQ(rig.length(kPadLoop, 0), kBeat) << "removed for good, the loop began anew";
}

TEST_F(GrainEditsTest, CopyingLeavesTheSource) {
    rig.engine.SetGrainVolume(0, 0, 0.5f);
    rig.engine.SetGrainPan(0, 0, 0.125f);
    EXPECT_EQ(rig.engine.CopyGrain(0, 0, 0, kBeat, &newIndex), S_OK);
    EXPECT_EQ(newIndex, -1);
    EXPECT_EQ(rig.engine.CopyGrain(0, 0, 8, kBeat, &newIndex), S_OK);
    rig.engine.CommitGrainEdits();
    EXPECT_EQ(rig.starts(0), (Starts{0, kBeat, kBeat}));
    EXPECT_EQ(rig.starts(8), Starts{kBeat});
    EXPECT_EQ(rig.padGrains(8)[0].volume, 0.5f);
    float pan = 0;
    rig.engine.GetGrainPan(8, 0, &pan);
    EXPECT_EQ(pan, 0.125f);
}

TEST_F(GrainEditsTest, AMovedGrainTakesTheTailFlagOfItsNewPad) {
    rig.engine.SetPadTail(8, 1);
    rig.engine.CopyGrain(0, 0, 8, 0, &newIndex);
    EXPECT_EQ(rig.padGrains(8)[0].extra, 1u);
}

TEST_F(GrainEditsTest, MovingAndCopyingRefuseBadPadsAndRaiseForABadGrain) {
    EXPECT_EQ(rig.engine.MoveGrain(16, 0, 0, 0, &newIndex, 1), E_INVALIDARG);
    EXPECT_EQ(rig.engine.MoveGrain(0, 0, -1, 0, &newIndex, 1), E_INVALIDARG);
    EXPECT_EQ(rig.engine.CopyGrain(-1, 0, 0, 0, &newIndex), E_INVALIDARG);
    EXPECT_EQ(rig.engine.CopyGrain(0, 0, 16, 0, &newIndex), E_INVALIDARG);
    EXPECT_EQ(rig.engine.MoveGrain(0, 0, 1, 0, nullptr, 1), E_POINTER);
    EXPECT_EQ(rig.engine.CopyGrain(0, 0, 1, 0, nullptr), E_POINTER);
    EXPECT_THROW(rig.engine.MoveGrain(0, 2, 1, 0, &newIndex, 0), std::invalid_argument);
    EXPECT_THROW(rig.engine.MoveGrain(0, -1, 0, 0, &newIndex, 1), std::invalid_argument);
    EXPECT_THROW(rig.engine.CopyGrain(3, 0, 1, 0, &newIndex), std::invalid_argument);
    EXPECT_EQ(newIndex, 55);
    EXPECT_EQ(rig.count(kPadLoop, 0), 2);
    EXPECT_EQ(rig.count(kPadLoop, 1), 0);
}

TEST_F(GrainEditsTest, AnExceptionLeavesTheLockOpen) {
    float value = 0;
    EXPECT_THROW(rig.engine.GetGrainVolume(0, 99, &value), std::invalid_argument);
    std::thread([&] { EXPECT_EQ(rig.engine.SetPadVolume(0, 1.0f), S_OK); }).join();
}

TEST_F(GrainEditsTest, TheSourceOfAGrainIsItsFileAndItsPlaceThere) {
    std::int32_t bin = 55;
    EXPECT_EQ(rig.source(0, 1), std::make_pair(0, 1));
    EXPECT_EQ(rig.engine.GetGrainSource(0, 0, nullptr, &bin), E_POINTER);
    EXPECT_EQ(rig.engine.GetGrainSource(0, 0, &bin, nullptr), E_POINTER);
    EXPECT_EQ(rig.engine.GetGrainSource(16, 0, &bin, &bin), E_INVALIDARG);
    EXPECT_THROW(rig.engine.GetGrainSource(0, 2, &bin, &bin), std::invalid_argument);
    EXPECT_EQ(bin, 55);
}

TEST_F(GrainEditsTest, TranspositionPassesAFloat) {
    for (const auto& [set, kept] : {std::pair{-5, -5},
                                    {24, 24},
                                    {16777217, 16777216},
                                    {INT32_MAX, INT32_MAX},
                                    {INT32_MIN, INT32_MIN}}) {
        EXPECT_EQ(rig.engine.SetGrainTranspose(0, 1, set), S_OK);
        std::int32_t semitones = 0;
        EXPECT_EQ(rig.engine.GetGrainTranspose(0, 1, &semitones), S_OK);
        EXPECT_EQ(semitones, kept);
    }
}

TEST_F(GrainEditsTest, VolumeAndPanOfAGrainAreNotHeldToARange) {
    float value = 0;
    EXPECT_EQ(rig.engine.SetGrainVolume(0, 1, 3.5f), S_OK);
    rig.engine.GetGrainVolume(0, 1, &value);
    EXPECT_EQ(value, 3.5f);
    EXPECT_EQ(rig.engine.SetGrainPan(0, 1, -0.1f), S_OK);
    rig.engine.GetGrainPan(0, 1, &value);
    EXPECT_EQ(value, -0.1f);
    rig.engine.SetGrainPan(0, 1, NAN);
    rig.engine.GetGrainPan(0, 1, &value);
    EXPECT_EQ(value, -0.1f) << "what is no number doesn't get in";
}

TEST_F(GrainEditsTest, GettersAndSettersOfAGrainRefuseABadPadAndRaiseForABadGrain) {
    float value = 0;
    std::int32_t semitones = 0;
    EXPECT_EQ(rig.engine.GetGrainVolume(0, 0, nullptr), E_POINTER);
    EXPECT_EQ(rig.engine.GetGrainPan(0, 0, nullptr), E_POINTER);
    EXPECT_EQ(rig.engine.GetGrainTranspose(0, 0, nullptr), E_POINTER);
    for (const std::int32_t pad : {-1, 16}) {
        EXPECT_EQ(rig.engine.GetGrainVolume(pad, 0, &value), E_INVALIDARG);
        EXPECT_EQ(rig.engine.SetGrainVolume(pad, 0, 1), E_INVALIDARG);
        EXPECT_EQ(rig.engine.GetGrainPan(pad, 0, &value), E_INVALIDARG);
        EXPECT_EQ(rig.engine.SetGrainPan(pad, 0, 1), E_INVALIDARG);
        EXPECT_EQ(rig.engine.GetGrainTranspose(pad, 0, &semitones), E_INVALIDARG);
        EXPECT_EQ(rig.engine.SetGrainTranspose(pad, 0, 1), E_INVALIDARG);
    }
    for (const std::int32_t grain : {-1, 2}) {
        EXPECT_THROW(rig.engine.GetGrainVolume(0, grain, &value), std::invalid_argument);
        EXPECT_THROW(rig.engine.SetGrainVolume(0, grain, 1), std::invalid_argument);
        EXPECT_THROW(rig.engine.GetGrainPan(0, grain, &value), std::invalid_argument);
        EXPECT_THROW(rig.engine.SetGrainPan(0, grain, 1), std::invalid_argument);
        EXPECT_THROW(rig.engine.GetGrainTranspose(0, grain, &semitones), std::invalid_argument);
        EXPECT_THROW(rig.engine.SetGrainTranspose(0, grain, 1), std::invalid_argument);
    }
}

TEST_F(GrainEditsTest, ThePadEndsWithItsLastGrain) {
    std::int64_t end = 55;
    EXPECT_EQ(rig.engine.GetPadEndTime(0, &end), S_OK);
    EXPECT_EQ(end, 2 * kBeat);
    EXPECT_EQ(rig.engine.GetPadEndTime(1, &end), S_OK);
    EXPECT_EQ(end, 0);
    EXPECT_EQ(rig.engine.GetPadEndTime(16, &end), E_INVALIDARG);
    EXPECT_EQ(rig.engine.GetPadEndTime(0, nullptr), E_POINTER);
}

TEST_F(GrainEditsTest, ListsGiveEveryGrainToTheCaller) {
    rig.engine.SetGrainVolume(0, 1, 0.1f);
    const auto grains = rig.padGrains(0);
    ASSERT_EQ(grains.size(), 2u);
    EXPECT_EQ(grains[1].startTicks, kBeat);
    EXPECT_EQ(grains[1].endTicks, 2 * kBeat);
    EXPECT_EQ(grains[1].volume, 0.1f);
    EXPECT_EQ(grains[1].plotLength, 272);
    EXPECT_EQ(grains[1].channels, 1);
    EXPECT_TRUE(rig.padGrains(1).empty());
}

TEST_F(GrainEditsTest, ListsOfABadIndexAreEmptyAndAnAnswerOfNo) {
    GrainListEntry some{};
    GrainListEntry* list = &some;
    std::int32_t count = 55;
    EXPECT_EQ(rig.engine.GetPadGrainList(16, &list, &count), S_FALSE);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(list, nullptr);
    count = 55;
    EXPECT_EQ(rig.engine.GetBinGrainList(1, &list, &count), S_FALSE);
    EXPECT_EQ(count, 0);
    count = 55;
    EXPECT_EQ(rig.engine.GetPadGrainList(7, &list, &count), S_OK);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(rig.engine.GetPadGrainList(0, nullptr, &count), E_POINTER);
    EXPECT_EQ(rig.engine.GetPadGrainList(0, &list, nullptr), E_POINTER);
    EXPECT_EQ(rig.engine.GetBinGrainList(0, nullptr, &count), E_POINTER);
    EXPECT_EQ(rig.engine.GetBinGrainList(0, &list, nullptr), E_POINTER);
    EXPECT_EQ(rig.engine.GetBinFileCount(nullptr), E_POINTER);
}

}  // namespace
}  // namespace marnoth::test::grain_edits_test
