#include <gtest/gtest.h>

#include <limits>

#include "hostkit/MakeObject.h"
#include "hostkit/TempoMap.h"

namespace marnoth::test::tempo_map_test {
namespace {

/// 120 beats per minute, 60 from tick 960 on, 240 from tick 1920 on: 0.5 s, 1 s and 0.25 s a beat.
RefPtr<TempoMap> threeTempos() {
    RefPtr<TempoMap> map = makeObject<TempoMap>(120.0);
    EXPECT_TRUE(map->addChange(960, 60.0));
    EXPECT_TRUE(map->addChange(1920, 240.0));
    return map;
}

TEST(TempoMap, SecondsAddUpOverTheChanges) {
    RefPtr<TempoMap> map = threeTempos();
    EXPECT_DOUBLE_EQ(map->secondsAt(480), 0.25);
    EXPECT_DOUBLE_EQ(map->secondsAt(960), 0.5);
    EXPECT_DOUBLE_EQ(map->secondsAt(1440), 1.0);
    EXPECT_DOUBLE_EQ(map->secondsAt(1920), 1.5);
    EXPECT_DOUBLE_EQ(map->secondsAt(2880), 1.75);
}

TEST(TempoMap, TicksAreTheInverseOfSeconds) {
    RefPtr<TempoMap> map = threeTempos();
    EXPECT_DOUBLE_EQ(map->tickAt(0.25), 480);
    EXPECT_DOUBLE_EQ(map->tickAt(0.5), 960);
    EXPECT_DOUBLE_EQ(map->tickAt(0.75), 1200);
    EXPECT_DOUBLE_EQ(map->tickAt(1.5), 1920);
    EXPECT_DOUBLE_EQ(map->tickAt(2.0), 3840);
}

TEST(TempoMap, PositionsBeforeTickZeroGoByTheFirstTempo) {
    RefPtr<TempoMap> map = threeTempos();
    EXPECT_DOUBLE_EQ(map->secondsAt(-1920), -1.0);
    EXPECT_DOUBLE_EQ(map->tickAt(-0.25), -480);
}

TEST(TempoMap, PositionsBeforeTickZeroGoByTheTempoOfTheAttachEvenWithAChangeAtZero) {
    RefPtr<TempoMap> map = makeObject<TempoMap>(120.0);
    EXPECT_TRUE(map->addChange(0, 60.0));
    EXPECT_DOUBLE_EQ(map->secondsAt(-960), -0.5);
    EXPECT_DOUBLE_EQ(map->secondsAt(960), 1.0);
    std::int32_t tempo = 0;
    EXPECT_EQ(map->GetTempoAt(0, nullptr, &tempo), S_OK);
    EXPECT_EQ(tempo, 12000);
}

TEST(TempoMap, MillisecondsAreRoundedHalfUp) {
    RefPtr<TempoMap> map = makeObject<TempoMap>(120.0);
    EXPECT_EQ(map->TicksToMilliseconds(960), 500);
    EXPECT_EQ(map->TicksToMilliseconds(1), 1);      // 0.52 ms
    EXPECT_EQ(map->TicksToMilliseconds(24), 13);    // 12.5 ms
    EXPECT_EQ(map->TicksToMilliseconds(-1), -1);    // -0.52 ms
    EXPECT_EQ(map->TicksToMilliseconds(-24), -12);  // -12.5 ms
}

TEST(TempoMap, TicksOfMillisecondsAreRoundedHalfUp) {
    RefPtr<TempoMap> map = makeObject<TempoMap>(93.75);  // 1.5 ticks a millisecond
    EXPECT_EQ(map->MillisecondsToTicks(640), 960);
    EXPECT_EQ(map->MillisecondsToTicks(1), 2);
    EXPECT_EQ(map->MillisecondsToTicks(-1), -1);
}

TEST(TempoMap, ConversionsThatDoNotFitEndAtTheLimits) {
    RefPtr<TempoMap> fast = makeObject<TempoMap>(6'000'000.0);
    EXPECT_EQ(fast->MillisecondsToTicks(std::numeric_limits<std::int32_t>::max()),
              std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(fast->MillisecondsToTicks(std::numeric_limits<std::int32_t>::min()),
              std::numeric_limits<std::int32_t>::min());
}

TEST(TempoMap, TellsTheTempoInRoundedHundredths) {
    RefPtr<TempoMap> map = makeObject<TempoMap>(99.996);
    EXPECT_TRUE(map->addChange(960, 128.5));
    std::int32_t tempo = 0;
    std::int32_t other = -7;
    EXPECT_EQ(map->GetTempoAt(0, &other, &tempo), S_OK);
    EXPECT_EQ(tempo, 10000);
    EXPECT_EQ(other, -7);
    EXPECT_EQ(map->GetTempoAt(959, nullptr, &tempo), S_OK);
    EXPECT_EQ(tempo, 10000);
    EXPECT_EQ(map->GetTempoAt(960, nullptr, &tempo), S_OK);
    EXPECT_EQ(tempo, 12850);
    EXPECT_EQ(map->GetTempoAt(0, nullptr, nullptr), E_POINTER);
}

TEST(TempoMap, RefusesChangesThatDoNotRiseOrAreNoTempo) {
    RefPtr<TempoMap> map = makeObject<TempoMap>(120.0);
    EXPECT_FALSE(map->addChange(-1, 60.0));
    EXPECT_TRUE(map->addChange(960, 60.0));
    EXPECT_FALSE(map->addChange(960, 90.0));
    EXPECT_FALSE(map->addChange(959, 90.0));
    EXPECT_FALSE(map->addChange(1920, 0.0));
    EXPECT_FALSE(map->addChange(1920, -60.0));
    EXPECT_FALSE(map->addChange(1920, std::numeric_limits<double>::infinity()));
    EXPECT_FALSE(map->addChange(1920, std::numeric_limits<double>::quiet_NaN()));
    EXPECT_DOUBLE_EQ(map->secondsAt(1920), 1.5);
}

TEST(TempoMap, AnswersForItselfAlone) {
    RefPtr<TempoMap> map = makeObject<TempoMap>(120.0);
    RefPtr<IKvxTempoMap> same;
    EXPECT_EQ(map->QueryInterface(IID_IKvxTempoMap, same.putVoid()), S_OK);
    EXPECT_EQ(same.get(), static_cast<IKvxTempoMap*>(map.get()));
    RefPtr<IKvxTimeConverter> other;
    EXPECT_EQ(map->QueryInterface(IID_IKvxTimeConverter, other.putVoid()), E_NOINTERFACE);
    EXPECT_EQ(map->reserved5(), E_NOTIMPL);
}

}  // namespace
}  // namespace marnoth::test::tempo_map_test
