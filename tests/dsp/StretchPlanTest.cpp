#include <gtest/gtest.h>

#include "dsp/StretchPlan.h"

namespace marnoth::test::stretch_plan_test {
namespace {

TEST(StretchPlan, TwiceTheLengthOfASecondTakesThreePasses) {
    const PassPlan plan = planPasses(44100, 88200, 44100);
    EXPECT_EQ(plan.passes, 3);
    EXPECT_EQ(plan.jump, 22050);
    EXPECT_EQ(plan.fade, 14700);
    EXPECT_EQ(plan.step, 22050);
}

TEST(StretchPlan, OneFrameMoreJumpsFromTheLastFrameWithAShortFade) {
    const PassPlan plan = planPasses(44100, 44101, 44100);
    EXPECT_EQ(plan.passes, 2);
    EXPECT_EQ(plan.jump, 44099);
    EXPECT_EQ(plan.step, 1);
    EXPECT_EQ(plan.fade, 1102);
}

TEST(StretchPlan, ASingleFrameIsRepeatedWithoutFade) {
    const PassPlan plan = planPasses(1, 100, 44100);
    EXPECT_EQ(plan.passes, 101);
    EXPECT_EQ(plan.jump, 0);
    EXPECT_EQ(plan.fade, 0);
}

TEST(StretchPlan, AShortSourceOverlapsByAtMostItsHalf) {
    // Overlap 4: (20 - 4) / (9 - 4) + 1 passes, a jump of (36 - 20) / 3.
    const PassPlan plan = planPasses(9, 20, 44100);
    EXPECT_EQ(plan.passes, 4);
    EXPECT_EQ(plan.jump, 5);
    EXPECT_EQ(plan.step, 4);
    EXPECT_EQ(plan.fade, 3);
}

TEST(StretchPlan, FourPercentExactlyTakesTheLongFade) {
    // 104000 / 100000 in f32 is the limit itself; one frame fewer stays below it.
    EXPECT_EQ(planPasses(100000, 104000, 44100).fade, 11025);
    EXPECT_EQ(planPasses(100000, 103999, 44100).fade, 1102);
    EXPECT_EQ(planHeadTail(104000, 100000, 44100).fade, 11025);
    EXPECT_EQ(planHeadTail(103999, 100000, 44100).fade, 1102);
}

TEST(StretchPlan, TwoPassesFadeOverAtMostAQuarterOfASecond) {
    const PassPlan plan = planPasses(441000, 551250, 44100);
    EXPECT_EQ(plan.passes, 2);
    EXPECT_EQ(plan.jump, 330750);
    EXPECT_EQ(plan.fade, 11025);
}

TEST(StretchPlan, AShorterTargetLeavesOutTheMiddle) {
    const HeadTailPlan plan = planHeadTail(44100, 22050, 44100);
    EXPECT_EQ(plan.fade, 11025);
    EXPECT_EQ(plan.fadeStart, 11025);
    EXPECT_EQ(plan.skip, 22050);
}

TEST(StretchPlan, AShortTargetFadesOverFourFifths) {
    const HeadTailPlan plan = planHeadTail(44100, 1000, 44100);
    EXPECT_EQ(plan.fade, 800);
    EXPECT_EQ(plan.fadeStart, 200);
    EXPECT_EQ(plan.skip, 43100);
}

TEST(StretchPlan, ATargetOfOneFrameHasNoFade) {
    const HeadTailPlan plan = planHeadTail(44100, 1, 44100);
    EXPECT_EQ(plan.fade, 0);
    EXPECT_EQ(plan.fadeStart, 1);
}

TEST(StretchPlan, EveryPlanMovesOnAndEndsOnItsTarget) {
    for (std::int64_t source = 1; source < 60; ++source) {
        for (std::int64_t target = source + 1; target < 500; target += 7) {
            for (std::int32_t rate : {0, 40, 200, 44100}) {
                const PassPlan plan = planPasses(source, target, rate);
                ASSERT_GE(plan.passes, 2);
                ASSERT_GE(plan.step, 1);
                ASSERT_GE(plan.jump, 0);
                ASSERT_LE(plan.fade, plan.passes < 3 ? plan.jump : plan.step);
                EXPECT_EQ(passAt(plan, target - 1).end, target);
                EXPECT_EQ(passAt(plan, target - 1).toCome, 0);
            }
        }
    }
}

TEST(StretchPlan, TheLongestLengthsStayInRange) {
    for (std::int64_t source :
         {std::int64_t{1}, std::int64_t{3}, std::int64_t{44100}, kMostFrames / 2 - 1, kMostFrames}) {
        const PassPlan plan = planPasses(source, kMostFrames, 44100);
        EXPECT_GE(plan.passes, 2);
        EXPECT_GE(plan.fade, 0);
        EXPECT_EQ(passAt(plan, kMostFrames - 1).end, kMostFrames);
    }
}

}  // namespace
}  // namespace marnoth::test::stretch_plan_test
