#include <gtest/gtest.h>

#include "shells/desktop/audio/BlockTimes.h"

namespace marnoth::test::block_times_test {
namespace {

TEST(BlockTimes, TellsHowLongBlocksTookBesideWhatTheyLast) {
    BlockTimes times;
    EXPECT_EQ(times.mean(), 0.0);
    for (float portion : {0.25f, 1.0f, 1.75f}) times.note(portion);
    EXPECT_EQ(times.blocks(), 3u);
    EXPECT_EQ(times.mean(), 1.0);
    EXPECT_EQ(times.worst(), 1.75f);
    EXPECT_EQ(times.beyondQuarter(), 2u);
    EXPECT_EQ(times.late(), 1u) << "a block that takes all of its time is there in time";
}

TEST(BlockTimes, TheLongestIsAskedForAnewAndOnceForAll) {
    BlockTimes times;
    times.note(0.5f);
    EXPECT_EQ(times.takeRecent(), 0.5f);
    times.note(0.25f);
    EXPECT_EQ(times.takeRecent(), 0.25f);
    EXPECT_EQ(times.takeRecent(), 0.0f);
    EXPECT_EQ(times.worst(), 0.5f);
}

}  // namespace
}  // namespace marnoth::test::block_times_test
