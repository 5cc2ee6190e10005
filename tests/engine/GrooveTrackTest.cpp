#include <stdexcept>

#include "engine/EditRig.h"
#include "engine/loopbin/BinFile.h"
#include "engine/model/GrooveTrack.h"
#include "sample/AcidWave.h"

namespace marnoth::test::groove_track_test {
namespace {

struct GrooveTrackTest : testing::Test {
    static constexpr std::int32_t kRate = 44100;
    CGrooveTrack track;

    static CGrooveEvent grain(std::int64_t lengthTicks, std::int32_t mark = 0) {
        CGrooveEvent made;
        made.lengthTicks = lengthTicks;
        made.binGrain = mark;
        return made;
    }
    std::vector<std::int32_t> marks() const {
        std::vector<std::int32_t> all;
        for (std::int32_t i = 0; i < track.GetSize(); ++i) all.push_back(track.GetAt(i).binGrain);
        return all;
    }
};

TEST_F(GrooveTrackTest, StartsEmptyAndOneShotAtTempo100) {
    EXPECT_EQ(track.GetSize(), 0);
    EXPECT_EQ(track.tempo, 100.0);
    EXPECT_EQ(track.oneShot, 1u);
    EXPECT_EQ(track.rootNote, -1);
    EXPECT_EQ(track.midiChannel, -1);
    EXPECT_EQ(track.volume, 1.0f);
    EXPECT_EQ(track.pan, 0.5f);
}

TEST_F(GrooveTrackTest, LengthsAreReadAndWrittenInTwoKindsOnly) {
    track.SetLength(5, kTicks16);
    track.SetLength(6, kSamples);
    track.SetLength(7, kWholeTicks);
    track.SetLength(-1, kTicks16);
    EXPECT_EQ(track.GetLength(kTicks16), 5);
    EXPECT_EQ(track.GetLength(kSamples), 6);
    EXPECT_EQ(track.GetLength(kWholeTicks), 0);
}

TEST_F(GrooveTrackTest, TheTempoIsBeatsByMinutes) {
    track.lengthTicks = 8 * kBeat;
    track.lengthSamples = 4 * 44100;
    track.RecomputeTempo(kRate);
    EXPECT_DOUBLE_EQ(track.tempo, 120.0);
    track.lengthSamples = 0;
    track.RecomputeTempo(kRate);
    EXPECT_EQ(track.tempo, 100.0);
}

TEST_F(GrooveTrackTest, AGrainAtAnEqualStartGoesInFrontOfTheOther) {
    track.InsertGrainSorted(grain(kBeat, 1), 0, false, kRate);
    EXPECT_EQ(track.InsertGrainSorted(grain(kBeat, 2), kBeat, false, kRate), 1);
    EXPECT_EQ(track.InsertGrainSorted(grain(kBeat, 3), kBeat, false, kRate), 1);
    EXPECT_EQ(track.InsertGrainSorted(grain(kBeat, 4), 2 * kBeat, false, kRate), 3);
    EXPECT_EQ(marks(), (std::vector<std::int32_t>{1, 3, 2, 4}));
}

TEST_F(GrooveTrackTest, AGrainEndingOnABeatLineMakesTheTrackJustAsLong) {
    track.InsertGrainSorted(grain(kBeat), kBeat, true, kRate);
    EXPECT_EQ(track.lengthTicks, 2 * kBeat);
}

TEST_F(GrooveTrackTest, AGrainEndingOnePastABeatLineMakesTheTrackAWholeBeatLonger) {
    track.InsertGrainSorted(grain(kBeat + 1), kBeat, true, kRate);
    EXPECT_EQ(track.lengthTicks, 3 * kBeat);
}

TEST_F(GrooveTrackTest, AGrainOfNoLengthAtTheBeginningNeedsNoBeat) {
    track.InsertGrainSorted(grain(0), 0, true, kRate);
    EXPECT_EQ(track.lengthTicks, 0);
}

TEST_F(GrooveTrackTest, TheLengthNeverShrinks) {
    track.lengthTicks = 8 * kBeat;
    track.InsertGrainSorted(grain(kBeat), 0, true, kRate);
    EXPECT_EQ(track.lengthTicks, 8 * kBeat);
}

TEST_F(GrooveTrackTest, GrowingGivesTheLengthInFramesAtTheTracksTempo) {
    track.tempo = 90.0;
    track.InsertGrainSorted(grain(kBeat), 2 * kBeat, true, kRate);
    // 3 beats at 90 are 2 seconds.
    EXPECT_EQ(track.lengthSamples, 88200);
    EXPECT_EQ(track.GetAt(0).startSamples, 58800);
}

TEST_F(GrooveTrackTest, WithoutGrowingTheLengthsStay) {
    track.lengthTicks = kBeat;
    track.lengthSamples = 1000;
    track.InsertGrainSorted(grain(kBeat), 5 * kBeat, false, kRate);
    EXPECT_EQ(track.lengthTicks, kBeat);
    EXPECT_EQ(track.lengthSamples, 1000);
    EXPECT_EQ(track.GetAt(0).startSamples, 5000);
}

TEST_F(GrooveTrackTest, OnATrackWithoutLengthAGrainStartsAtSampleZero) {
    CGrooveEvent placed = grain(kBeat);
    placed.startSamples = 77;
    track.AppendGrain(std::move(placed), kBeat, false, kRate);
    EXPECT_EQ(track.GetAt(0).startSamples, 0);
}

TEST_F(GrooveTrackTest, APlacedGrainTakesTheTracksTailFlag) {
    track.tailOn = 1;
    track.InsertGrainSorted(grain(kBeat), 0, false, kRate);
    EXPECT_EQ(track.GetAt(0).tailOn, 1u);
    track.SetTail(0);
    EXPECT_EQ(track.GetAt(0).tailOn, 0u);
    track.AppendGrain(grain(kBeat), 0, false, kRate);
    EXPECT_EQ(track.GetAt(1).tailOn, 0u);
}

TEST_F(GrooveTrackTest, AppendingKeepsNoOrderUntilTheSort) {
    track.AppendGrain(grain(kBeat, 1), 3 * kBeat, false, kRate);
    track.AppendGrain(grain(kBeat, 2), 1 * kBeat, false, kRate);
    EXPECT_EQ(track.AppendGrain(grain(kBeat, 3), 2 * kBeat, false, kRate), 2);
    EXPECT_EQ(marks(), (std::vector<std::int32_t>{1, 2, 3}));
    track.PurgeAndSort();
    EXPECT_EQ(marks(), (std::vector<std::int32_t>{2, 3, 1}));
}

TEST_F(GrooveTrackTest, TheSortIsAShellSortSoEqualStartsMayChangePlaces) {
    // Starts 1 1 0 0: at gap 2 both pairs swap to 0 0 1 1, and each pair keeps its order.
    for (int i = 0; i < 4; ++i) track.AppendGrain(grain(kBeat, i), i < 2 ? kBeat : 0, false, kRate);
    track.PurgeAndSort();
    EXPECT_EQ(marks(), (std::vector<std::int32_t>{2, 3, 0, 1}));
    // Starts 2 1 1' 0: gap 2 gives 1' 0 2 1, and gap 1 then 0 1' 1 2.
    track.ClearGrains();
    const std::int64_t four[] = {2, 1, 1, 0};
    for (int i = 0; i < 4; ++i) track.AppendGrain(grain(kBeat, i), four[i] * kBeat, false, kRate);
    track.PurgeAndSort();
    EXPECT_EQ(marks(), (std::vector<std::int32_t>{3, 2, 1, 0}));
    // Starts 2 2' 1 0 2'': gap 2 gives 1 0 2 2' 2'' and gap 1 swaps the first two.
    track.ClearGrains();
    const std::int64_t starts[] = {2, 2, 1, 0, 2};
    for (int i = 0; i < 5; ++i) track.AppendGrain(grain(kBeat, i), starts[i] * kBeat, false, kRate);
    track.PurgeAndSort();
    EXPECT_EQ(marks(), (std::vector<std::int32_t>{3, 2, 0, 1, 4}));
}

TEST_F(GrooveTrackTest, MarkedGrainsGoWithThePurge) {
    for (int i = 0; i < 4; ++i) track.AppendGrain(grain(kBeat, i), i * kBeat, true, kRate);
    track.MarkGrainDeleted(0);
    track.MarkGrainDeleted(2);
    track.MarkGrainDeleted(4);
    EXPECT_EQ(track.GetSize(), 4);
    track.PurgeAndSort();
    EXPECT_EQ(marks(), (std::vector<std::int32_t>{1, 3}));
    EXPECT_EQ(track.lengthTicks, 4 * kBeat);
}

TEST_F(GrooveTrackTest, APurgeThatLeavesNothingForgetsLengthAndTempo) {
    track.tempo = 90;
    track.AppendGrain(grain(kBeat), 0, true, kRate);
    track.MarkGrainDeleted(0);
    track.PurgeAndSort();
    EXPECT_EQ(track.lengthTicks, 0);
    EXPECT_EQ(track.lengthSamples, 0);
    EXPECT_EQ(track.tempo, 100.0);
}

TEST_F(GrooveTrackTest, RemovingTheLastGrainForgetsLengthAndTempo) {
    track.tempo = 90;
    track.AppendGrain(grain(kBeat), 0, true, kRate);
    track.AppendGrain(grain(kBeat), kBeat, true, kRate);
    track.RemoveGrain(0);
    EXPECT_EQ(track.lengthTicks, 2 * kBeat);
    EXPECT_EQ(track.tempo, 90.0);
    track.RemoveGrain(0);
    EXPECT_EQ(track.lengthTicks, 0);
    EXPECT_EQ(track.lengthSamples, 0);
    EXPECT_EQ(track.tempo, 100.0);
}

TEST_F(GrooveTrackTest, ABadIndexRaises) {
    track.AppendGrain(grain(kBeat), 0, true, kRate);
    EXPECT_THROW(track.GetAt(1), std::invalid_argument);
    EXPECT_THROW(track.GetAt(-1), std::invalid_argument);
    EXPECT_THROW(track.RemoveGrain(1), std::invalid_argument);
    EXPECT_THROW(track.RemoveGrain(-1), std::invalid_argument);
    EXPECT_THROW(track.MarkGrainDeleted(-1), std::invalid_argument);
    EXPECT_NO_THROW(track.MarkGrainDeleted(1));
    EXPECT_EQ(track.GetSize(), 1);
}

TEST_F(GrooveTrackTest, ACopyHasEveryFieldAndSharesItsGrains) {
    track.lengthTicks = 1;
    track.lengthSamples = 2;
    track.tempo = 3;
    track.looping = track.synced = track.mute = track.solo = track.followKey = 1;
    track.oneShot = 0;
    track.rootNote = 5;
    track.midiChannel = 6;
    track.output = 7;
    track.volume = 0.5f;
    track.pan = 0.25f;
    track.AppendGrain(grain(kBeat, 42), 0, false, kRate);
    const CGrooveTrack copy(track);
    EXPECT_EQ(copy.lengthTicks, 1);
    EXPECT_EQ(copy.lengthSamples, 2);
    EXPECT_EQ(copy.tempo, 3.0);
    EXPECT_EQ(copy.looping + copy.synced + copy.mute + copy.solo + copy.followKey, 5u);
    EXPECT_EQ(copy.oneShot, 0u);
    EXPECT_EQ(copy.rootNote, 5);
    EXPECT_EQ(copy.midiChannel, 6);
    EXPECT_EQ(copy.output, 7u);
    EXPECT_EQ(copy.volume, 0.5f);
    EXPECT_EQ(copy.pan, 0.25f);
    ASSERT_EQ(copy.GetSize(), 1);
    EXPECT_EQ(copy.GetAt(0).binGrain, 42);
    EXPECT_EQ(&copy.GetAt(0), &track.GetAt(0));
}

TEST_F(GrooveTrackTest, ACopyStaysAsItIsWhateverBecomesOfTheTrack) {
    for (int i = 0; i < 100; ++i) track.AppendGrain(grain(kBeat, i), i * kBeat, true, kRate);
    const CGrooveTrack copy(track);
    track.ChangeAt(50, [](CGrooveEvent& event) { event.binGrain = 1000; });
    track.MarkGrainDeleted(3);
    track.RemoveGrain(7);
    track.SetTail(1);
    track.ClearGrains();
    ASSERT_EQ(copy.GetSize(), 100);
    for (std::int32_t i = 0; i < 100; ++i) {
        EXPECT_EQ(copy.GetAt(i).binGrain, i);
        EXPECT_EQ(copy.GetAt(i).deleted + copy.GetAt(i).tailOn, 0u);
    }
}

TEST_F(GrooveTrackTest, EveryGrainOfAFileGetsATailOfItsOwnAndACopyOnAPadSharesIt) {
    CAcidWave reader;
    WaveFile loop;
    const TempPath file = loop.frames(1000, sine).acid({.beats = 1}).strc(2, {{300}, {301}}).writeTemp();
    ASSERT_EQ(reader.Open(file.c_str()), S_OK);
    BinFile bin;
    ASSERT_FALSE(bin.LoadFromWave(reader, L"name", L"path", 3, floatFormat(44100, 2), kRate));
    CGrooveTrack pad;
    pad.CopyGrainsFrom(bin.track);
    const std::int64_t lengths[] = {300, 1, 699};
    ASSERT_EQ(bin.track.GetSize(), 3);
    for (std::int32_t i = 0; i < 3; ++i) {
        const CGrooveEvent& grain = bin.track.GetAt(i);
        ASSERT_TRUE(grain.tailWave) << i;
        EXPECT_EQ(grain.tailOn, 0u) << "the tail is there whatever the flag";
        EXPECT_EQ(grain.tailWave->frames, 2 * lengths[i]);
        EXPECT_EQ(grain.tailLengthSamples, 2 * lengths[i]);
        EXPECT_EQ(pad.GetAt(i).tailWave.get(), grain.tailWave.get());
        EXPECT_EQ(grain.tailWave->refCount, 1u) << "one grain, on both tracks";
        EXPECT_EQ(grain.binFile, 3);
        EXPECT_EQ(grain.sample, bin.sample);
    }
    EXPECT_EQ(bin.sample->refCount, 4u) << "the file and its three grains";
}

TEST_F(GrooveTrackTest, CopyingGrainsAppendsAndChangesNeitherLengthsNorFlags) {
    CGrooveTrack other;
    other.AppendGrain(grain(kBeat, 1), 0, true, kRate);
    other.looping = other.synced = 1;
    track.AppendGrain(grain(kBeat, 9), 0, false, kRate);
    track.CopyGrainsFrom(other);
    EXPECT_EQ(marks(), (std::vector<std::int32_t>{9, 1}));
    EXPECT_EQ(track.lengthTicks, 0);
    EXPECT_EQ(track.looping, 0u);
}

TEST_F(GrooveTrackTest, TheRootNoteIsKeptBetweenMinus1And127) {
    for (const std::int32_t note : {0, 127, -1, 5}) {
        track.SetRootNote(note);
        EXPECT_EQ(track.rootNote, note);
    }
    track.SetRootNote(128);
    track.SetRootNote(-2);
    EXPECT_EQ(track.rootNote, 5);
}

TEST_F(GrooveTrackTest, HostileLengthsStayInRange) {
    track.SetLength(INT64_MAX, kTicks16);
    track.AppendGrain(grain(INT64_MAX), INT64_MAX, true, kRate);
    EXPECT_EQ(track.lengthTicks, INT64_MAX);
    EXPECT_GT(track.lengthSamples, 0);
    track.tempo = 0;
    track.AppendGrain(grain(kBeat), 0, true, kRate);
    EXPECT_GT(track.lengthSamples, 0);
}

}  // namespace
}  // namespace marnoth::test::groove_track_test
