#include <gtest/gtest.h>

#include <limits>

#include "hostkit/MakeObject.h"
#include "hostkit/TempoMap.h"
#include "hostkit/TimeConverter.h"

namespace marnoth::test::time_converter_test {
namespace {

struct Clock {
    explicit Clock(double tempo, double rate = 44100.0)
        : map(makeObject<TempoMap>(tempo)),
          converter(makeObject<TimeConverter>(RefPtr<TempoService>(map.get()), rate)) {}

    SynthTimeValue convert(SynthTimeValue value, SynthTimeFormat target) {
        EXPECT_EQ(converter->ConvertTime(&value, target), S_OK);
        EXPECT_EQ(value.format, target);
        return value;
    }
    std::int64_t samplesOfTicks(std::int32_t ticks) { return convert(ofTicks(ticks), kTimeSamples).samples; }
    std::int32_t ticksOfSamples(std::int64_t samples) {
        return convert(ofSamples(samples), kTimeTicks).ticks;
    }

    static SynthTimeValue ofTicks(std::int32_t ticks) {
        SynthTimeValue value;
        value.format = kTimeTicks;
        value.ticks = ticks;
        return value;
    }
    static SynthTimeValue ofSamples(std::int64_t samples) {
        SynthTimeValue value;
        value.format = kTimeSamples;
        value.samples = samples;
        return value;
    }
    static SynthTimeValue ofTicks16(std::int64_t ticks16) {
        SynthTimeValue value;
        value.format = kTimeTicks16;
        value.ticks16 = ticks16;
        return value;
    }
    static SynthTimeValue ofSeconds(double seconds) {
        SynthTimeValue value;
        value.format = kTimeSeconds;
        value.seconds = seconds;
        return value;
    }

    RefPtr<TempoMap> map;
    RefPtr<TimeConverter> converter;
};

TEST(TimeConverter, SamplesOfTicksAreRoundedHalfUp) {
    Clock clock(120.0);  // 22.96875 samples a tick
    EXPECT_EQ(clock.samplesOfTicks(960), 22050);
    EXPECT_EQ(clock.samplesOfTicks(1), 23);
    EXPECT_EQ(clock.samplesOfTicks(-1), -23);
    EXPECT_EQ(clock.samplesOfTicks(2), 46);    // 45.9375
    EXPECT_EQ(clock.samplesOfTicks(9), 207);   // 206.71875
    EXPECT_EQ(clock.samplesOfTicks(10), 230);  // 229.6875
    EXPECT_EQ(clock.samplesOfTicks(14), 322);  // 321.5625
    EXPECT_EQ(clock.samplesOfTicks(18), 413);  // 413.4375
}

TEST(TimeConverter, HalvesOfASampleGoUpOnBothSidesOfZero) {
    Clock clock(120.0, 960.0);  // half a sample a tick, exact in doubles
    EXPECT_EQ(clock.samplesOfTicks(15), 8);
    EXPECT_EQ(clock.samplesOfTicks(-15), -7);
}

TEST(TimeConverter, TicksOfSamplesAreRoundedHalfUp) {
    Clock clock(120.0);
    EXPECT_EQ(clock.ticksOfSamples(22050), 960);
    EXPECT_EQ(clock.ticksOfSamples(11), 0);  // 0.479
    EXPECT_EQ(clock.ticksOfSamples(12), 1);  // 0.522
    EXPECT_EQ(clock.ticksOfSamples(-12), -1);
}

TEST(TimeConverter, FractionsOfTicksAreIn65536ths) {
    Clock clock(120.0);
    EXPECT_EQ(clock.convert(Clock::ofSamples(22050), kTimeTicks16).ticks16, 62914560);
    EXPECT_EQ(clock.convert(Clock::ofSamples(1), kTimeTicks16).ticks16, 2853);    // 125829120 / 44100
    EXPECT_EQ(clock.convert(Clock::ofTicks16(32768), kTimeSamples).samples, 11);  // 11.48
    EXPECT_EQ(clock.convert(Clock::ofTicks16(62914560), kTimeSamples).samples, 22050);
    EXPECT_EQ(clock.convert(Clock::ofTicks16(65535), kTimeTicks).ticks, 1);
}

TEST(TimeConverter, SecondsStayAsExactAsTheyCome) {
    Clock clock(120.0, 48000.0);
    EXPECT_DOUBLE_EQ(clock.convert(Clock::ofSamples(24000), kTimeSeconds).seconds, 0.5);
    EXPECT_DOUBLE_EQ(clock.convert(Clock::ofTicks(-1920), kTimeSeconds).seconds, -1.0);
    EXPECT_EQ(clock.convert(Clock::ofSeconds(1.0), kTimeSamples).samples, 48000);
    EXPECT_EQ(clock.convert(Clock::ofSeconds(0.25), kTimeTicks).ticks, 480);
}

TEST(TimeConverter, FollowsTheTempoAcrossChangesMadeLater) {
    Clock clock(120.0);
    clock.map->addChange(960, 60.0);
    EXPECT_EQ(clock.samplesOfTicks(1920), 66150);
    EXPECT_EQ(clock.ticksOfSamples(44100), 1440);
    EXPECT_EQ(clock.samplesOfTicks(-1920), -44100);
}

TEST(TimeConverter, AUnitConvertedToItselfStays) {
    Clock clock(128.5);
    for (std::int64_t n : {-44101, -1, 0, 1, 12345, 1'000'000'007}) {
        EXPECT_EQ(clock.convert(Clock::ofSamples(n), kTimeSamples).samples, n);
        EXPECT_EQ(clock.convert(Clock::ofTicks16(n), kTimeTicks16).ticks16, n);
    }
}

TEST(TimeConverter, WhatDoesNotFitEndsAtTheLimits) {
    Clock clock(120.0);
    EXPECT_EQ(clock.ticksOfSamples(std::numeric_limits<std::int64_t>::max()),
              std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(clock.convert(Clock::ofSeconds(-1e300), kTimeSamples).samples,
              std::numeric_limits<std::int64_t>::min());
}

TEST(TimeConverter, RefusesWhatItDoesNotKnow) {
    Clock clock(120.0);
    EXPECT_EQ(clock.converter->ConvertTime(nullptr, kTimeTicks), E_POINTER);
    SynthTimeValue value = Clock::ofSamples(77);
    EXPECT_EQ(clock.converter->ConvertTime(&value, 0), E_INVALIDARG);
    EXPECT_EQ(clock.converter->ConvertTime(&value, 5), E_INVALIDARG);
    EXPECT_EQ(value.format, kTimeSamples);
    EXPECT_EQ(value.samples, 77);
    value.format = 9;
    EXPECT_EQ(clock.converter->ConvertTime(&value, kTimeTicks), E_INVALIDARG);
}

}  // namespace
}  // namespace marnoth::test::time_converter_test
