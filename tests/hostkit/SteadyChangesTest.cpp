#include <gtest/gtest.h>

#include "hostkit/MakeObject.h"
#include "hostkit/MemoryStream.h"
#include "hostkit/SteadyRig.h"

/// What happens in the steady mode to sound whose loop is taken away while it sounds.
namespace marnoth::test::steady_changes_test {
namespace {

using namespace steady;

constexpr std::int64_t kCut = 6400;

/// A pad that is held, and something that is done at `kCut`.
struct CutRig : LevelRig {
    explicit CutRig(bool oneShot = false) : LevelRig(oneShot) {}
    IGrooveSampler& sampler() { return rig.sampler(); }
    void loadOver(int pad, double level) {
        std::int32_t bin = -1;
        std::uint32_t status = 0;
        ASSERT_EQ(sampler().LoadFileToPad(pad, "over", plainSound(20000, level).c_str(), &bin, &status),
                  S_OK);
        ASSERT_EQ(sampler().SetPadLooping(pad, 1), S_OK);
    }
    void expectLevel(std::int64_t from, std::int64_t to, double level) const {
        for (std::int64_t frame = from; frame < to; ++frame)
            ASSERT_NEAR(at(frame), level, 1e-4) << "frame " << frame;
    }
    /// In 20 ms from the one to the other.
    void expectCrossfade(double before, double behind) const {
        for (std::int64_t i = 0; i < kFade; ++i) {
            const double done = static_cast<double>(i) / kFade;
            ASSERT_NEAR(at(kCut + i), before + (behind - before) * done, 1e-4) << "frame " << i;
        }
        expectLevel(kCut + kFade, kCut + kFade + 500, behind);
    }
};

TEST(SteadyChanges, AFileThatIsRemovedFadesOut) {
    for (const bool oneShot : {false, true}) {
        CutRig it(oneShot);
        it.hold(kCut);
        EXPECT_EQ(it.sampler().RemoveBinFile(0), S_OK);
        it.render(kCut);
        it.expectFadeFrom(kCut);
    }
}

TEST(SteadyChanges, WhatThePagePlaysFadesOutWithItsFile) {
    for (const auto audition : {&IGrooveSampler::AuditionPad, &IGrooveSampler::AuditionBinFile}) {
        CutRig it;
        EXPECT_EQ((it.sampler().*audition)(0, -1), S_OK);
        it.render(kCut);
        EXPECT_EQ(it.sampler().RemoveBinFile(0), S_OK);
        it.render(kCut);
        it.expectFadeFrom(kCut);
    }
}

TEST(SteadyChanges, AHeldNoteGoesOnAsItIsWhenAnotherFileIsRemoved) {
    CutRig it;
    it.load(1, plainSound(3000, 0.25), 62);
    it.hold(kCut);
    EXPECT_EQ(it.sampler().RemoveBinFile(1), S_OK);
    it.render(kCut);
    it.expectLevel(kCut - 100, 2 * kCut, 0.5);
}

TEST(SteadyChanges, OfAPadWithGrainsOfTwoFilesOnlyTheRemovedOnesFade) {
    CutRig it;
    it.load(1, plainSound(20000, 0.25), 62);
    EXPECT_EQ(it.sampler().AddGrain(1, 0, 0, 0), S_OK);
    it.hold(kCut);
    it.expectLevel(kCut - 100, kCut, 0.75);
    EXPECT_EQ(it.sampler().RemoveBinFile(1), S_OK);
    it.render(kCut);
    it.expectCrossfade(0.75, 0.5);
}

TEST(SteadyChanges, TwoFilesThatAreRemovedAtOnceFadeOutTogether) {
    CutRig it;
    it.load(1, plainSound(20000, 0.25), 60);
    EXPECT_EQ(it.sampler().SetPadOneShot(1, 0), S_OK);
    EXPECT_EQ(it.sampler().SetPadLooping(1, 1), S_OK);
    it.hold(kCut);
    it.expectLevel(kCut - 100, kCut, 0.75);
    EXPECT_EQ(it.sampler().RemoveBinFile(1), S_OK);
    EXPECT_EQ(it.sampler().RemoveBinFile(0), S_OK);
    it.render(kCut);
    it.expectCrossfade(0.75, 0);
}

TEST(SteadyChanges, AProjectThatIsClearedFadesOut) {
    CutRig it;
    it.hold(kCut);
    EXPECT_EQ(it.sampler().ClearProject(), S_OK);
    it.render(kCut);
    it.expectFadeFrom(kCut);
}

TEST(SteadyChanges, AProjectFadesOutThatAnotherReplaces) {
    CutRig empty;
    EXPECT_EQ(empty.sampler().ClearProject(), S_OK);
    RefPtr<MemoryStream> state = makeObject<MemoryStream>();
    ASSERT_EQ(empty.rig.save(*state), S_OK);
    ASSERT_EQ(state->Seek({}, STREAM_SEEK_SET, nullptr), S_OK);
    CutRig it;
    it.hold(kCut);
    EXPECT_EQ(it.rig.load(*state), S_OK);
    it.render(kCut);
    it.expectFadeFrom(kCut);
}

TEST(SteadyChanges, AProjectFadesOutWhoseSuccessorCantBeLoaded) {
    CutRig it;
    it.hold(kCut);
    EXPECT_LT(it.sampler().LoadProject("there is no such project.mrn"), 0);
    it.render(kCut);
    it.expectFadeFrom(kCut);
}

TEST(SteadyChanges, ALoopThatIsLaidOverAnotherFadesIntoIt) {
    CutRig it;
    it.hold(kCut);
    it.loadOver(0, 0.25);
    it.render(kCut);
    it.expectCrossfade(0.5, 0.25);
}

TEST(SteadyChanges, UndoFadesWhatComesBackIn) {
    CutRig it;
    EXPECT_EQ(it.sampler().PushUndoState(), S_OK);
    it.loadOver(0, 0.25);
    it.hold(kCut);
    it.expectLevel(kCut - 100, kCut, 0.25);
    EXPECT_EQ(it.sampler().Undo(), S_OK);
    it.render(kCut);
    it.expectCrossfade(0.25, 0.5);
}

TEST(SteadyChanges, AFadeGoesOnWhileAFileIsLoaded) {
    CutRig it;
    it.hold(kCut);
    EXPECT_EQ(it.rig.synth().StopPlayback(), S_OK);
    it.loadOver(3, 0.25);
    it.render(kCut);
    it.expectFadeFrom(kCut);
}

TEST(SteadyChanges, TheGraphsStopCuts) {
    CutRig it;
    it.hold(kCut);
    EXPECT_EQ(it.rig.synth().StopPlayback(), S_OK);
    EXPECT_EQ(it.rig.stop(), S_OK);
    it.render(kCut);
    it.expectLevel(kCut, 2 * kCut, 0);
}

TEST(SteadyChanges, WithoutTheSteadyModeTheyCut) {
    CutRig it;
    EXPECT_EQ(setSteady(it.rig.sampler(), false), S_OK);
    it.hold(kCut);
    EXPECT_EQ(it.sampler().RemoveBinFile(0), S_OK);
    it.render(kCut);
    it.expectLevel(kCut, 2 * kCut, 0);
}

}  // namespace
}  // namespace marnoth::test::steady_changes_test
