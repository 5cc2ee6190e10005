#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "shells/lv2/HostPosition.h"

namespace marnoth::test::host_position_test {
namespace {

constexpr double kRate = 48000;
constexpr std::int64_t kFramesOfBeat = 24000;  // at 120 beats per minute

/// Playing at 120.
ToldPosition playingAt(std::int64_t frame) {
    return {.frame = frame, .speed = 1.0, .tempo = 120.0};
}

/// The same with bars of four beats.
ToldPosition barsAt(std::int64_t frame, double bar, double barBeat) {
    ToldPosition told = playingAt(frame);
    told.bar = bar;
    told.barBeat = barBeat;
    told.beatsPerBar = 4;
    told.beatUnit = 4;
    return told;
}

HostPosition hostPosition() {
    HostPosition position;
    position.setRate(kRate);
    return position;
}

TEST(HostPosition, StandsWithoutATempoUntilTheHostTellsIt) {
    HostPosition position = hostPosition();
    position.advance(1000);
    EXPECT_FALSE(position.next().playing);
    EXPECT_FALSE(position.next().tempo);
}

TEST(HostPosition, GoesOnBetweenWhatIsTold) {
    HostPosition position = hostPosition();
    position.take(playingAt(5000));
    position.advance(64);
    position.advance(1);
    EXPECT_TRUE(position.next().playing);
    EXPECT_EQ(position.next().frame, 5065);
    EXPECT_EQ(position.next().tempo, 120.0);
    EXPECT_FALSE(position.next().tick) << "the frame says it";
}

TEST(HostPosition, TheFrameIsTheTruthWhereBeatsAgreeWithinATick) {
    HostPosition position = hostPosition();
    // A tick is 25 frames: 24 frames behind beat 5 of the host, who rounds to 1/1920 of a beat.
    position.take(barsAt(5 * kFramesOfBeat + 24, 1, 1 + 2.0 / 1920));
    EXPECT_FALSE(position.next().tick);
}

TEST(HostPosition, WhereBeatsDontFollowFromTheFrameTheyAreTheTruth) {
    HostPosition position = hostPosition();
    position.take(barsAt(kFramesOfBeat, 2, 1.5));
    EXPECT_EQ(position.next().tick, 960 * 9.5);
    position.advance(kFramesOfBeat);
    EXPECT_NEAR(position.next().tick.value(), 960 * 10.5, 1e-6);
}

TEST(HostPosition, ABeatFromTheStartOfTheTimelineCountsBeforeBars) {
    HostPosition position = hostPosition();
    ToldPosition told = barsAt(0, 7, 0);
    told.beat = 13.25;
    position.take(told);
    EXPECT_EQ(position.next().tick, 960 * 13.25);
}

TEST(HostPosition, BarsThatStandStillBeforeTheStartAreNotBelieved) {
    HostPosition position = hostPosition();
    position.take(barsAt(-272, 0, 0));
    EXPECT_EQ(position.next().frame, -272);
    EXPECT_FALSE(position.next().tick);
}

TEST(HostPosition, BeatsMayBeOtherNotesThanQuarters) {
    HostPosition position = hostPosition();
    ToldPosition told = barsAt(123456, 3, 2);
    told.beatsPerBar = 6;
    told.beatUnit = 8;
    position.take(told);
    EXPECT_EQ(position.next().tick, 960 * (3 * 6 + 2) / 2.0);
}

TEST(HostPosition, AChangeOfTheMeterLeavesMusicalTimeWhereItIs) {
    HostPosition position = hostPosition();
    position.take(barsAt(16 * kFramesOfBeat, 4, 0));
    // Bar 5 has three beats: by those alone it would be beat 15.
    position.advance(4 * kFramesOfBeat);
    ToldPosition told = barsAt(20 * kFramesOfBeat, 5, 0);
    told.beatsPerBar = 3;
    position.take(told);
    EXPECT_FALSE(position.next().tick) << "it is beat 20, as the frame says";
    position.advance(kFramesOfBeat);
    told = barsAt(21 * kFramesOfBeat, 5, 1);
    told.beatsPerBar = 3;
    position.take(told);
    EXPECT_FALSE(position.next().tick);
}

TEST(HostPosition, BehindAChangeOfTempoTheBeatsAreTold) {
    HostPosition position = hostPosition();
    position.take(barsAt(0, 0, 0));
    position.advance(8 * kFramesOfBeat);
    ToldPosition told = barsAt(8 * kFramesOfBeat, 2, 0);
    told.tempo = 60.0;
    position.take(told);
    EXPECT_EQ(position.next().tempo, 60.0);
    EXPECT_EQ(position.next().tick, 960 * 8.0);
    position.advance(kFramesOfBeat);
    EXPECT_NEAR(position.next().tick.value(), 960 * 8.5, 1e-6);
}

/// Bars as a host tells them that rounds beats to so many parts.
ToldPosition roundedAt(std::int64_t frame, double beat, double tempo) {
    constexpr double kParts = 1920.0;
    ToldPosition told = barsAt(frame, 0, std::round(beat * kParts) / kParts);
    told.tempo = tempo;
    return told;
}

TEST(HostPosition, AChangeOfTempoAtABeatInTheMiddleOfABlockIsExactInTheNextOne) {
    // A beat lasts 28800 frames at 100 and 19200 at 150; the change is 769 frames into the block.
    constexpr std::int64_t kChange = 8 * 28800;
    const auto beatAt = [](std::int64_t frame) { return 8 + (frame - kChange) / 19200.0; };
    HostPosition position = hostPosition();
    position.take(roundedAt(kChange - 769, 8 - 769 / 28800.0, 100));
    position.advance(1024);
    position.take(roundedAt(kChange + 255, beatAt(kChange + 255), 150));
    EXPECT_NEAR(position.next().tick.value(), 960 * beatAt(kChange + 255), 1e-6);
    position.advance(1024);
    position.take(roundedAt(kChange + 1279, beatAt(kChange + 1279), 150));
    EXPECT_NEAR(position.next().tick.value(), 960 * beatAt(kChange + 1279), 1e-6)
        << "what the host rounds away stays away";
}

TEST(HostPosition, AChangeOfTempoElsewhereIsWhereTheHostSays) {
    HostPosition position = hostPosition();
    position.take(roundedAt(0, 0, 100));
    position.advance(1024);
    // 12.8 ticks behind the beat.
    const double beat = (12.8 + 1.5 * (1024 / 30.0 - 12.8)) / 960;
    position.take(roundedAt(1024, beat, 150));
    EXPECT_NEAR(position.next().tick.value(), 960 * beat, 0.25);
}

TEST(HostPosition, AtAnotherSpeedTheTempoIsThatOfWhatIsHeard) {
    HostPosition position = hostPosition();
    position.take(playingAt(kFramesOfBeat));
    position.advance(kFramesOfBeat);
    ToldPosition twice = playingAt(2 * kFramesOfBeat);
    twice.speed = 2.0;
    position.take(twice);
    EXPECT_EQ(position.next().tempo, 240.0);
    EXPECT_EQ(position.next().frame, 2 * kFramesOfBeat);
    EXPECT_EQ(position.next().tick, 960 * 2.0);
    position.advance(kFramesOfBeat / 2);
    twice.frame = 3 * kFramesOfBeat;
    position.take(twice);
    EXPECT_EQ(position.next().frame, 2 * kFramesOfBeat + kFramesOfBeat / 2) << "no jump to who hears it";
    EXPECT_EQ(position.next().tick, 960 * 3.0);
}

TEST(HostPosition, WhatGoesBackwardsStands) {
    HostPosition position = hostPosition();
    ToldPosition told = playingAt(1000);
    told.speed = -1.0;
    position.take(told);
    EXPECT_FALSE(position.next().playing);
    EXPECT_EQ(position.next().tempo, 120.0);
}

TEST(HostPosition, WhatIsLeftOutIsAsItWas) {
    HostPosition position = hostPosition();
    position.take(barsAt(kFramesOfBeat, 2, 1.5));
    position.advance(kFramesOfBeat);
    position.take({});
    EXPECT_TRUE(position.next().playing);
    EXPECT_EQ(position.next().frame, 2 * kFramesOfBeat);
    EXPECT_NEAR(position.next().tick.value(), 960 * 10.5, 1e-6);
    position.take({.speed = 0.0});
    EXPECT_FALSE(position.next().playing);
}

TEST(HostPosition, AJumpGoesByTheNewFrameAlone) {
    HostPosition position = hostPosition();
    position.take(barsAt(kFramesOfBeat, 2, 1.5));
    position.take(playingAt(4 * kFramesOfBeat));
    EXPECT_EQ(position.next().frame, 4 * kFramesOfBeat);
    EXPECT_FALSE(position.next().tick);
}

TEST(HostPosition, NumbersThatCantBeCountAsLeftOut) {
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    constexpr double kEndless = std::numeric_limits<double>::infinity();
    HostPosition position = hostPosition();
    position.take(playingAt(1000));
    for (const double odd : {kNone, kEndless, -kEndless, 1e300}) {
        position.take({.frame = 1000,
                       .speed = odd,
                       .tempo = odd,
                       .beat = odd,
                       .bar = odd,
                       .barBeat = odd,
                       .beatsPerBar = odd,
                       .beatUnit = odd});
        EXPECT_TRUE(position.next().playing);
        EXPECT_EQ(position.next().tempo, 120.0);
        EXPECT_FALSE(position.next().tick);
    }
    for (const std::int64_t far :
         {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
        position.take(playingAt(far));
        position.advance(8192);
        EXPECT_TRUE(std::isfinite(position.next().tick.value_or(0)));
    }
}

}  // namespace
}  // namespace marnoth::test::host_position_test
