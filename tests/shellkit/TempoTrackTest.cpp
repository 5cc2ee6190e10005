#include <gtest/gtest.h>

#include "shellkit/midi/TempoTrack.h"

namespace marnoth::test::tempo_track_test {
namespace {

TEST(TempoTrack, AddsUpTheSecondsOfEachTempo) {
    TempoTrack tempo(120);
    tempo.add(960, 60);
    tempo.add(1920, 240);
    EXPECT_DOUBLE_EQ(tempo.seconds(480), 0.25);
    EXPECT_DOUBLE_EQ(tempo.seconds(960), 0.5);
    EXPECT_DOUBLE_EQ(tempo.seconds(1440), 1.0);
    EXPECT_DOUBLE_EQ(tempo.seconds(2880), 1.75);
}

TEST(TempoTrack, TheLastOfTwoAtOneTickCounts) {
    TempoTrack tempo(120);
    tempo.add(0, 60);
    EXPECT_DOUBLE_EQ(tempo.seconds(960), 1.0);
}

}  // namespace
}  // namespace marnoth::test::tempo_track_test
