#include <gtest/gtest.h>

#include <limits>

#include "editor/Truncate.h"
#include "editor/padeditor/PadView.h"
#include "editor/padeditor/TimeScale.h"

namespace marnoth::test::time_scale_test {
namespace {

using test::kBeat;
using test::padView;

constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kFirst = std::numeric_limits<std::int64_t>::min();

TEST(TimeScale, BeatsLieAtTheirPixels) {
    const TimeScale scale = padView();
    EXPECT_EQ(scale.TickToPixel(0), 137);
    EXPECT_EQ(scale.TickToPixel(kBeat), 137 + 54);
    EXPECT_EQ(scale.TickToPixel(4 * kBeat), 137 + 4 * 54);
    EXPECT_EQ(scale.TickToPixel(kBeat / 3), 137 + 18);
}

TEST(TimeScale, TicksGoToTheNearestPixelWithTheMiddleUp) {
    // Half a pixel is 62914560 / 108 = 582542.2 ticks.
    EXPECT_EQ(padView().TickToPixel(582542), 137);
    EXPECT_EQ(padView().TickToPixel(582543), 138);
}

TEST(TimeScale, TimesBeforeTheBeginAreCutTowardsIt) {
    // -54 + 0.5 is cut to -53.
    EXPECT_EQ(padView().TickToPixel(-kBeat), 137 - 53);
}

TEST(TimeScale, ScrollingMovesTheBeatsToTheLeft) {
    TimeScale scale = padView();
    scale.horizontal = 100;
    EXPECT_EQ(scale.TickToPixel(kBeat), 137 + 54 - 100);
    // (100 - 137 + 141) / 54 beats
    EXPECT_EQ(scale.PixelToTick(141), 121168782);  // 104 * 62914560 / 54 = 121168782.2
}

TEST(TimeScale, PixelsGiveTicksFromTheBeginOn) {
    const TimeScale scale = padView();
    EXPECT_EQ(scale.PixelToTick(137), 0);
    EXPECT_EQ(scale.PixelToTick(138), 1165084);  // 62914560 / 54 = 1165084.4
    EXPECT_EQ(scale.PixelToTick(191), kBeat);
    EXPECT_EQ(scale.PixelToTick(136), 0);
    EXPECT_EQ(scale.PixelToTick(std::numeric_limits<int>::min()), 0);
}

TEST(TimeScale, TheEndsOfTimeStayFarPixels) {
    TimeScale scale = padView();
    scale.pixelsPerBeat = 200.0;
    EXPECT_EQ(scale.TickToPixel(kLast), kFarPixel);
    EXPECT_EQ(scale.TickToPixel(kFirst), 137 - kFarPixel);
    EXPECT_EQ(scale.contentWidth(kLast), kFarPixel);
    EXPECT_EQ(scale.contentWidth(kFirst), -kFarPixel);
    scale.horizontal = std::numeric_limits<int>::max();
    EXPECT_EQ(scale.TickToPixel(0), -kFarPixel);
    // 4294967157 pixels of 200 to the beat
    EXPECT_NEAR(static_cast<double>(scale.PixelToTick(std::numeric_limits<int>::max())) / kBeat,
                (2.0 * std::numeric_limits<int>::max() - 137) / 200, 1e-3);
}

TEST(TimeScale, SnappingGoesToTheNearestDivisionOfTheBeat) {
    // 10000000 ticks are 0.159 beats: 0.64 quarters, 1.27 eighths, 1.91 twelfths, 2.54 sixteenths.
    const std::int64_t expected[] = {10000000, 0, 0, 0, kBeat / 4, kBeat / 8, 2 * kBeat / 12, 3 * kBeat / 16};
    TimeScale scale = padView();
    for (int i = 0; i < 8; ++i) {
        scale.snapIndex = i;
        EXPECT_EQ(scale.SnapTick(10000000), expected[i]) << i;
    }
}

TEST(TimeScale, SnappingTakesTheLaterDivisionInTheMiddle) {
    // A twelfth of a beat is 5242880 ticks.
    EXPECT_EQ(padView().SnapTick(2621439), 0);
    EXPECT_EQ(padView().SnapTick(2621440), 5242880);
    EXPECT_EQ(padView().SnapTick(100 * kBeat + 2621440), 100 * kBeat + 5242880);
}

TEST(TimeScale, SnappingCutsTimesBeforeTheBeginTowardsIt) {
    // -1 + 0.5 is cut to 0, -2 + 0.5 to -1.
    EXPECT_EQ(padView().SnapTick(-5242880), 0);
    EXPECT_EQ(padView().SnapTick(-2 * 5242880), -5242880);
}

TEST(TimeScale, SnapIndex0LeavesTicksUntouched) {
    TimeScale scale = padView();
    for (const int index : {0, -1, 8, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        scale.snapIndex = index;
        for (const std::int64_t ticks : {kFirst, std::int64_t{-3}, std::int64_t{12345677}, kLast})
            EXPECT_EQ(scale.SnapTick(ticks), ticks) << index;
    }
}

TEST(TimeScale, SnappingAtTheEndsOfTimeStaysWithinTwoBeatsOfThem) {
    TimeScale scale = padView();
    for (scale.snapIndex = 1; scale.snapIndex < 8; ++scale.snapIndex) {
        EXPECT_GT(scale.SnapTick(kLast), kLast - 2 * kBeat);
        EXPECT_LT(scale.SnapTick(kFirst), kFirst + 2 * kBeat);
    }
}

TEST(TimeScale, LowRowsHaveNarrowMargins) {
    TimeScale scale = padView();
    const int margins[][2] = {{10, 1}, {12, 1}, {13, 3}, {15, 3}, {17, 3}, {18, 5}, {20, 5}, {30, 5}};
    for (const auto& [height, margin] : margins) {
        scale.rowHeight = height;
        EXPECT_EQ(scale.GrainMargin(), margin) << height;
    }
}

TEST(TimeScale, GrainsLieWithinTheMarginsOfTheirRow) {
    TimeScale scale = padView();
    EXPECT_EQ(scale.grainBand(0), (Rect{101, 362, 583, 370}));
    scale.rowHeight = 30;
    scale.vertical = 100;
    // The row's top is 30 * 4 - 100 + 361 = 381.
    EXPECT_EQ(scale.grainBand(4), (Rect{101, 386, 583, 406}));
}

TEST(TimeScale, TheBandAboveThePlotCountsAsTheFirstRow) {
    const TimeScale scale = padView();
    EXPECT_EQ(scale.rowOf(361), 0);
    EXPECT_EQ(scale.rowOf(352), 0);
    EXPECT_EQ(scale.rowOf(351), -1);
    EXPECT_EQ(scale.rowOf(300), -1);
    EXPECT_EQ(scale.rawRowOf(331), -3);
}

TEST(TimeScale, WhatLiesBelowTheRowsCountsAsTheLastOne) {
    const TimeScale scale = padView();
    EXPECT_EQ(scale.rowOf(520), 15);
    EXPECT_EQ(scale.rowOf(521), 15);
    EXPECT_EQ(scale.rawRowOf(521), 16);
    EXPECT_EQ(scale.rowOf(std::numeric_limits<int>::max()), 15);
}

TEST(TimeScale, ScrollingMovesTheRowsUp) {
    TimeScale scale = padView();
    scale.rowHeight = 30;
    scale.vertical = 318;
    EXPECT_EQ(scale.rowOf(361), 10);  // 318 / 30
    EXPECT_EQ(scale.topOf(10), 361 - 18);
}

TEST(TimeScale, ARowIsHitInsideTheViewOnly) {
    const TimeScale scale = padView();
    int row = 7;
    bool onLabel = true;
    EXPECT_TRUE(scale.HitTestRow({200, 527}, &row, &onLabel));
    EXPECT_EQ(row, 15);
    EXPECT_FALSE(onLabel);
    for (const Point outside : {Point{583, 365}, Point{100, 365}, Point{120, 347}, Point{120, 528}})
        EXPECT_FALSE(scale.HitTestRow(outside, &row, &onLabel)) << outside.x << ',' << outside.y;
    // In the view, yet a full row above the plot.
    EXPECT_FALSE(scale.HitTestRow({120, 351}, &row, &onLabel));
    EXPECT_EQ(row, -1);
    EXPECT_FALSE(onLabel);
}

TEST(TimeScale, ThePadsNameLiesBetweenTheViewsEdgeAndThePlot) {
    const TimeScale scale = padView();
    const std::pair<int, bool> labels[] = {
        {101, false}, {102, true}, {134, true}, {135, false}, {140, false}};
    for (const auto& [x, expected] : labels) {
        int row = -1;
        bool onLabel = !expected;
        EXPECT_TRUE(scale.HitTestRow({x, 385}, &row, &onLabel));
        EXPECT_EQ(row, 2);
        EXPECT_EQ(onLabel, expected) << x;
    }
}

TEST(TimeScale, TheContentIsABeatLongerThanAPad) {
    const TimeScale scale = padView();
    EXPECT_EQ(scale.contentWidth(0), 54);
    EXPECT_EQ(scale.contentWidth(4 * kBeat), 270);
    EXPECT_EQ(scale.contentWidth(kBeat / 3), 72);
}

TEST(TimeScale, SixteenRowsOf10FitThePlotAndOf30DoNot) {
    TimeScale scale = padView();
    EXPECT_EQ(scale.contentHeight(), 160);
    EXPECT_EQ(scale.plot.height(), 162);
    scale.rowHeight = 30;
    EXPECT_EQ(scale.contentHeight(), 480);
}

TEST(TimeScale, ZoomStopsAt20And200PixelsPerBeat) {
    TimeScale scale = padView();
    for (const double expected : {81.0, 121.5, 182.25, 200.0, 200.0}) {
        scale.zoomIn();
        EXPECT_DOUBLE_EQ(scale.pixelsPerBeat, expected);
    }
    scale.pixelsPerBeat = 54.0;
    for (const double expected : {36.0, 24.0, 20.0, 20.0}) {
        scale.zoomOut();
        EXPECT_DOUBLE_EQ(scale.pixelsPerBeat, expected);
    }
}

TEST(TimeScale, RowsAre10To30PixelsHigh) {
    TimeScale scale = padView();
    for (const int expected : {15, 20, 25, 30, 30}) {
        scale.makeRowsHigher();
        EXPECT_EQ(scale.rowHeight, expected);
    }
    for (const int expected : {25, 20, 15, 10, 10}) {
        scale.makeRowsLower();
        EXPECT_EQ(scale.rowHeight, expected);
    }
}

TEST(TimeScale, ZoomingHoldsThePixelsScrolled) {
    TimeScale scale = padView();
    scale.horizontal = 354;
    scale.zoomIn();
    EXPECT_EQ(scale.horizontal, 354);
}

}  // namespace
}  // namespace marnoth::test::time_scale_test
