#include <gtest/gtest.h>

#include "platform/drawing/FocusPatience.h"

namespace marnoth::test::focus_patience_test {
namespace {

using std::chrono::milliseconds;

/// A time so many milliseconds after some beginning.
FocusPatience::Time at(int ms) {
    return FocusPatience::Time(std::chrono::seconds(1000)) + milliseconds(ms);
}

TEST(FocusPatience, WaitsForNothingWhileTheKeyboardIsHere) {
    FocusPatience patience;
    EXPECT_EQ(patience.deadline(), std::nullopt);
    EXPECT_FALSE(patience.isLost(at(100000)));
}

TEST(FocusPatience, AKeyboardThatStaysAwayFor100MillisecondsIsLostOnce) {
    FocusPatience patience;
    patience.left(at(0));
    EXPECT_EQ(patience.deadline(), at(100));
    EXPECT_FALSE(patience.isLost(at(99)));
    EXPECT_TRUE(patience.isLost(at(100)));
    EXPECT_FALSE(patience.isLost(at(300)));
    EXPECT_EQ(patience.deadline(), std::nullopt);
}

TEST(FocusPatience, AKeyboardThatComesBackInTimeWasNeverAway) {
    FocusPatience patience;
    patience.left(at(0));
    patience.returned();
    EXPECT_EQ(patience.deadline(), std::nullopt);
    EXPECT_FALSE(patience.isLost(at(100)));
}

TEST(FocusPatience, EachAbsenceIsCountedFromItsOwnBeginning) {
    FocusPatience patience;
    patience.left(at(0));
    patience.returned();
    patience.left(at(80));
    EXPECT_FALSE(patience.isLost(at(179)));
    EXPECT_TRUE(patience.isLost(at(180)));
}

TEST(FocusPatience, BeingToldTwiceOfOneAbsenceDoesNotProlongIt) {
    FocusPatience patience;
    patience.left(at(0));
    patience.left(at(60));
    EXPECT_TRUE(patience.isLost(at(100)));
    patience.left(at(120));
    EXPECT_FALSE(patience.isLost(at(300))) << "it was told already";
    patience.returned();
    patience.left(at(400));
    EXPECT_TRUE(patience.isLost(at(500)));
}

}  // namespace
}  // namespace marnoth::test::focus_patience_test
