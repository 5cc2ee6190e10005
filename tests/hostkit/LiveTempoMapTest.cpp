#include <gtest/gtest.h>

#include <cmath>

#include "hostkit/LiveTempoMap.h"
#include "hostkit/MakeObject.h"
#include "hostkit/TempoMap.h"

namespace marnoth::test::live_tempo_map_test {
namespace {

TEST(LiveTempoMap, BeginsAsAMapOfOneTempo) {
    RefPtr<LiveTempoMap> live = makeObject<LiveTempoMap>(97.3);
    RefPtr<TempoMap> map = makeObject<TempoMap>(97.3);
    for (double tick : {-3000.5, 0.0, 0.25, 7777.0, 1e9}) {
        EXPECT_EQ(live->secondsAt(tick), map->secondsAt(tick));
        EXPECT_EQ(live->tickAt(tick / 100), map->tickAt(tick / 100));
    }
}

TEST(LiveTempoMap, RestartsAtATickAndASecondThatNeedNotAgree) {
    RefPtr<LiveTempoMap> map = makeObject<LiveTempoMap>(120.0);
    map->restart(960, 10.0, 60.0);  // 960 ticks a second
    EXPECT_DOUBLE_EQ(map->tickAt(10.0), 960);
    EXPECT_DOUBLE_EQ(map->tickAt(11.0), 1920);
    EXPECT_DOUBLE_EQ(map->tickAt(9.0), 0) << "the tempo holds before, too";
    EXPECT_DOUBLE_EQ(map->secondsAt(2880), 12.0);
}

TEST(LiveTempoMap, AChangeLeavesThePastWhereItWas) {
    RefPtr<LiveTempoMap> map = makeObject<LiveTempoMap>(120.0);  // 1920 ticks a second
    map->change(3840, 2.0, 60.0);
    EXPECT_DOUBLE_EQ(map->secondsAt(1920), 1.0);
    EXPECT_DOUBLE_EQ(map->tickAt(1.5), 2880);
    EXPECT_DOUBLE_EQ(map->tickAt(3.0), 4800);
    EXPECT_DOUBLE_EQ(map->secondsAt(5760), 4.0);
}

TEST(LiveTempoMap, AChangeAtATickThatTheMapDidNotExpectIsFollowed) {
    RefPtr<LiveTempoMap> map = makeObject<LiveTempoMap>(120.0);
    map->change(3850, 2.0, 60.0);
    EXPECT_DOUBLE_EQ(map->tickAt(2.0), 3850);
    EXPECT_DOUBLE_EQ(map->tickAt(1.999), 1.999 * 1920);
    EXPECT_DOUBLE_EQ(map->secondsAt(1920), 1.0);
}

TEST(LiveTempoMap, ALaterWordForTheSameTimeHolds) {
    RefPtr<LiveTempoMap> map = makeObject<LiveTempoMap>(120.0);
    map->change(1920, 1.0, 60.0);
    map->change(1920, 1.0, 240.0);
    EXPECT_DOUBLE_EQ(map->tickAt(2.0), 1920 + 3840);
    map->change(0, 0.0, 30.0);
    EXPECT_DOUBLE_EQ(map->tickAt(2.0), 960) << "as a restart";
}

TEST(LiveTempoMap, RestartForgetsThePast) {
    RefPtr<LiveTempoMap> map = makeObject<LiveTempoMap>(120.0);
    map->change(1920, 1.0, 60.0);
    map->restart(0, 0.0, 240.0);
    EXPECT_DOUBLE_EQ(map->secondsAt(3840), 1.0);
    std::int32_t hundredths = 0;
    EXPECT_EQ(map->GetTempoAt(0, nullptr, &hundredths), S_OK);
    EXPECT_EQ(hundredths, 24000);
}

/// A ramp from 120 to 180 beats per minute within 10 s and steady from there on, changed each millisecond.
double rampTick(double seconds) {
    const double ramp = std::min(seconds, 10.0);
    return 16.0 * (120.0 * ramp + 3.0 * ramp * ramp) + 16.0 * 180.0 * (seconds - ramp);
}

TEST(LiveTempoMap, ALongRampKeepsItsPastToAFractionOfAFrame) {
    RefPtr<LiveTempoMap> map = makeObject<LiveTempoMap>(120.0);
    for (int i = 1; i <= 10000; ++i) map->change(rampTick(i * 0.001), i * 0.001, 120.0 + 0.006 * i);
    constexpr double kFrame = 1 / 48000.0;
    for (double seconds = 0.0; seconds < 12.0; seconds += 0.1237)
        EXPECT_NEAR(map->secondsAt(rampTick(seconds)), seconds, kFrame) << seconds;
}

}  // namespace
}  // namespace marnoth::test::live_tempo_map_test
