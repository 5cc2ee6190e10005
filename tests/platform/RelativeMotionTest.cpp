#include <gtest/gtest.h>

#include "platform/linux/ClickCounter.h"
#include "platform/linux/RelativeMotion.h"

namespace marnoth::test::relative_motion_test {
namespace {

/// A drag from (100, 100).
class RelativeMotionTest : public testing::Test {
protected:
    RelativeMotionTest() { motion.begin({100, 100}); }
    RelativeMotion motion;
};

TEST_F(RelativeMotionTest, DistancesGoFromOnePlaceToTheNext) {
    EXPECT_EQ(motion.moved({103, 99}, false).distance, (Point{3, -1}));
    EXPECT_EQ(motion.moved({105, 99}, false).distance, (Point{2, 0}));
}

TEST_F(RelativeMotionTest, FarFromHomeTheMouseIsPutBackOnce) {
    EXPECT_FALSE(motion.moved({110, 100}, false).putBack);
    EXPECT_TRUE(motion.moved({140, 100}, false).putBack);
    EXPECT_FALSE(motion.moved({145, 100}, false).putBack) << "it is on its way";
}

TEST_F(RelativeMotionTest, NothingIsLostOrCountedTwiceAsTheMouseGoesBack) {
    EXPECT_EQ(motion.moved({140, 100}, false).distance, (Point{40, 0}));
    // Seen before the server had put it back.
    EXPECT_EQ(motion.moved({143, 100}, false).distance, (Point{3, 0}));
    // Behind: it is home, and had gone two pixels from there.
    EXPECT_EQ(motion.moved({102, 100}, true).distance, (Point{2, 0}));
    EXPECT_EQ(motion.moved({104, 101}, true).distance, (Point{2, 1}));
}

TEST_F(RelativeMotionTest, WhereItCantBePutBackDistancesGoOnFromWhereItIs) {
    EXPECT_TRUE(motion.moved({140, 100}, false).putBack);
    const RelativeMotion::Step step = motion.moved({145, 100}, true);
    EXPECT_EQ(step.distance, (Point{5, 0}));
    EXPECT_FALSE(motion.moved({300, 100}, true).putBack) << "not tried again in this drag";
    motion.begin({0, 0});
    EXPECT_TRUE(motion.moved({60, 0}, false).putBack) << "but in the next";
}

TEST(ClickCounter, TwoPressesInOnePlaceAreADoubleClick) {
    ClickCounter clicks;
    EXPECT_FALSE(clicks.isDouble({10, 10}, 1000));
    EXPECT_TRUE(clicks.isDouble({12, 9}, 1400));
}

TEST(ClickCounter, TheThirdPressBeginsAnew) {
    ClickCounter clicks;
    clicks.isDouble({10, 10}, 1000);
    clicks.isDouble({10, 10}, 1100);
    EXPECT_FALSE(clicks.isDouble({10, 10}, 1200));
    EXPECT_TRUE(clicks.isDouble({10, 10}, 1300));
}

TEST(ClickCounter, LateOrFarPressesAreSingleOnes) {
    ClickCounter clicks;
    clicks.isDouble({10, 10}, 1000);
    EXPECT_FALSE(clicks.isDouble({10, 10}, 1401));
    EXPECT_FALSE(clicks.isDouble({15, 10}, 1402));
    EXPECT_TRUE(clicks.isDouble({15, 10}, 1403));
}

TEST(ClickCounter, TheDisplaysClockMayWrapAround) {
    ClickCounter clicks;
    clicks.isDouble({10, 10}, 0xFFFFFF00);
    EXPECT_TRUE(clicks.isDouble({10, 10}, 0x10));
}

}  // namespace
}  // namespace marnoth::test::relative_motion_test
