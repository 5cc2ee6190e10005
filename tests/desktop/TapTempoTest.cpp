#include <gtest/gtest.h>

#include "shells/desktop/playing/TapTempo.h"

namespace marnoth::test::tap_tempo_test {
namespace {

using std::chrono::milliseconds;

TEST(TapTempo, TwoTapsMakeATempo) {
    TapTempo tap;
    EXPECT_EQ(tap.tap(TapTempo::Time()), std::nullopt);
    EXPECT_NEAR(tap.tap(TapTempo::Time(milliseconds(500))).value(), 120.0, 1e-9);
}

TEST(TapTempo, TheMeanOfTheLastFourIntervalsCounts) {
    TapTempo tap;
    for (const int at : {0, 1000, 1500, 2000, 2500}) tap.tap(TapTempo::Time(milliseconds(at)));
    // 1000 ms has gone out of sight: four of 500.
    EXPECT_NEAR(tap.tap(TapTempo::Time(milliseconds(3000))).value(), 120.0, 1e-9);
    // Three of 500 and one of 600.
    EXPECT_NEAR(tap.tap(TapTempo::Time(milliseconds(3600))).value(), 60.0 * 4 / 2.1, 1e-9);
}

TEST(TapTempo, APauseBeginsAnew) {
    TapTempo tap;
    tap.tap(TapTempo::Time(milliseconds(0)));
    tap.tap(TapTempo::Time(milliseconds(500)));
    EXPECT_EQ(tap.tap(TapTempo::Time(milliseconds(2501))), std::nullopt);
    EXPECT_NEAR(tap.tap(TapTempo::Time(milliseconds(3501))).value(), 60.0, 1e-9);
}

}  // namespace
}  // namespace marnoth::test::tap_tempo_test
