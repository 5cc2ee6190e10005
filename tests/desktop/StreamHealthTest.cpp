#include <gtest/gtest.h>

#include <vector>

#include "shells/desktop/audio/StreamHealth.h"
#include "shells/desktop/midi/NotesOn.h"

namespace marnoth::test::stream_health_test {
namespace {

using Block = StreamHealth::Block;

TEST(StreamHealth, AnUnderrunThatTheNextBlockExplainsIsADropout) {
    StreamHealth health;
    EXPECT_EQ(health.block(false), Block::plays);
    health.warn();
    EXPECT_EQ(health.block(true), Block::dropped);
    EXPECT_EQ(health.block(false), Block::plays);
    EXPECT_FALSE(health.isLost());
}

TEST(StreamHealth, AWarningThatNothingExplainsIsTheEnd) {
    StreamHealth health;
    health.warn();
    EXPECT_EQ(health.block(false), Block::lost);
    EXPECT_EQ(health.block(false), Block::lost);
    EXPECT_TRUE(health.isLost());
}

TEST(StreamHealth, UnderrunsWithoutABlockBetweenThemAreTheEnd) {
    StreamHealth health;
    int dropped = 0;
    while (dropped < 10'000 && health.block(true) == Block::dropped) ++dropped;
    EXPECT_EQ(dropped, 500);
    EXPECT_TRUE(health.isLost());
}

TEST(StreamHealth, UnderrunsNowAndThenAreNever) {
    StreamHealth health;
    for (int i = 0; i < 10'000; ++i) {
        ASSERT_EQ(health.block(true), Block::dropped);
        ASSERT_EQ(health.block(false), Block::plays);
    }
}

TEST(StreamHealth, AFailureIsTheEndAtOnce) {
    StreamHealth health;
    health.fail();
    EXPECT_TRUE(health.isLost());
    EXPECT_EQ(health.block(true), Block::lost);
}

TEST(NotesOn, EndsWhatWasntSwitchedOff) {
    NotesOn held;
    held.take(0x90, 60, 100);
    held.take(0x9F, 127, 1);
    held.take(0x91, 60, 100);
    held.take(0x81, 60, 64);
    held.take(0x92, 61, 100);
    held.take(0x92, 61, 0);
    held.take(0xB0, 62, 100);
    std::vector<std::pair<int, int>> ended;
    const auto note = [&](std::uint8_t status, std::uint8_t key) { ended.emplace_back(status, key); };
    held.end(note);
    EXPECT_EQ(ended, (std::vector<std::pair<int, int>>{{0x80, 60}, {0x8F, 127}}));
    held.end(note);
    EXPECT_EQ(ended.size(), 2u);
}

}  // namespace
}  // namespace marnoth::test::stream_health_test
