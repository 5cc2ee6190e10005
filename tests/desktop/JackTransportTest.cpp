#include <gtest/gtest.h>

#include "shells/desktop/audio/JackTransport.h"

namespace marnoth::test::jack_transport_test {
namespace {

/// At 48000, 120 beats per minute and 1920 JACK ticks to the beat: a beat is 24000 frames.
jack_position_t at(jack_nframes_t frame, int bar, int beat, int tick) {
    jack_position_t position{};
    position.frame = frame;
    position.frame_rate = 48000;
    position.valid = JackPositionBBT;
    position.bar = bar;
    position.beat = beat;
    position.tick = tick;
    position.beats_per_bar = 4;
    position.beat_type = 4;
    position.ticks_per_beat = 1920;
    position.beats_per_minute = 120;
    return position;
}

TEST(JackTransport, PlaysWhileItRollsAndStandsWhileItWaits) {
    const jack_position_t position = at(0, 1, 1, 0);
    EXPECT_TRUE(readJackTransport(JackTransportRolling, position).playing);
    EXPECT_FALSE(readJackTransport(JackTransportStopped, position).playing);
    EXPECT_FALSE(readJackTransport(JackTransportStarting, position).playing);
}

TEST(JackTransport, WithoutBeatsThereIsTheFrameAlone) {
    jack_position_t position = at(24000, 7, 3, 5);
    position.valid = {};
    const LiveTransport told = readJackTransport(JackTransportRolling, position);
    EXPECT_EQ(told.frame, 24000);
    EXPECT_FALSE(told.tick);
    EXPECT_FALSE(told.tempo);
}

TEST(JackTransport, TheFrameIsTheTruthWhereTheBeatIsItsRounding) {
    // Frame 24010 is tick 960.4 of ours, 1920.8 of JACK's, which is told as 1920.
    const LiveTransport told = readJackTransport(JackTransportRolling, at(24010, 1, 2, 0));
    EXPECT_EQ(told.tempo, 120.0);
    ASSERT_TRUE(told.tick);
    EXPECT_NEAR(*told.tick, 960.4, 1e-9);
}

TEST(JackTransport, TheBeatIsTheTruthWhereTheTempoHasChangedBefore) {
    const LiveTransport told = readJackTransport(JackTransportRolling, at(24000, 3, 2, 960));
    // Two bars of four, a beat and a half of one.
    ASSERT_TRUE(told.tick);
    EXPECT_EQ(*told.tick, 960 * 9.5);
}

TEST(JackTransport, BeatsMayBeThoseOfAFrameBefore) {
    jack_position_t position = at(100000, 3, 2, 0);
    position.valid = static_cast<jack_position_bits_t>(JackPositionBBT | JackBBTFrameOffset);
    position.bbt_offset = 250;
    // 250 frames are 10 ticks.
    EXPECT_NEAR(*readJackTransport(JackTransportRolling, position).tick, 960 * 9 + 10, 1e-9);
}

TEST(JackTransport, BeatsThatCantBeArentTold) {
    jack_position_t position = at(0, 1, 1, 0);
    position.beats_per_minute = 0;
    EXPECT_FALSE(readJackTransport(JackTransportRolling, position).tempo);
    position = at(0, 1, 1, 0);
    position.ticks_per_beat = 0;
    EXPECT_FALSE(readJackTransport(JackTransportRolling, position).tick);
}

TEST(JackTransport, WhatIsWrittenIsBarBeatAndTickFromOneOn) {
    jack_position_t position{};
    writeJackBeats(position, {960 * 6.25 + 0.5, 97.5});
    EXPECT_EQ(position.valid, JackPositionBBT);
    EXPECT_EQ(position.bar, 2);
    EXPECT_EQ(position.beat, 3);
    EXPECT_EQ(position.tick, 240);
    EXPECT_EQ(double{position.bar_start_tick}, 3840.0);
    EXPECT_EQ(double{position.ticks_per_beat}, 960.0);
    EXPECT_EQ(position.beats_per_minute, 97.5);
    EXPECT_EQ(position.beats_per_bar, 4.0f);
}

}  // namespace
}  // namespace marnoth::test::jack_transport_test
