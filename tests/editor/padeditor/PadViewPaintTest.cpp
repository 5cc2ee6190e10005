#include <gtest/gtest.h>

#include <algorithm>

#include "editor/PlainFont.h"
#include "editor/Truncate.h"
#include "editor/padeditor/GrainShape.h"
#include "editor/padeditor/PadView.h"
#include "editor/padeditor/PadViewPaint.h"
#include "platform/drawing/RecordingSurface.h"
#include "seam/IGrooveSampler.h"

namespace marnoth::test::pad_view_paint_test {
namespace {

using test::kBeat;
using test::padView;
using Calls = std::vector<std::string>;

/// The texts that were drawn, in their order, with where they stand.
Calls textsOf(const RecordingSurface& surface) {
    Calls texts;
    for (const std::string& call : surface.calls())
        if (call.starts_with("TextOut ")) texts.push_back(call.substr(8));
    return texts;
}

GrainListEntry grainFrom(std::int64_t start, std::int64_t end, bool tail = false) {
    return {start, end, 0, 1.0f, nullptr, 0, 1, tail ? 1u : 0u};
}

class PadViewPaint : public testing::Test {
protected:
    RecordingSurface surface;
    TimeScale scale = padView();
    test::PlainFont small{12};
    test::PlainFont large{14};
};

TEST_F(PadViewPaint, BeginsWithThePanelsGround) {
    fillPadView(surface, scale);
    EXPECT_EQ(surface.calls(),
              (Calls{"SelectPen 37,43,52", "SelectBrush 37,43,52", "Rectangle 101,348,583,528"}));
}

TEST_F(PadViewPaint, TheRulerHasALineAndANumberForEachBeat) {
    // 446 / 54 is 8.3: beats 0 to 8, lines over 16 rows of 10 and one pixel more.
    drawRuler(surface, scale, 446, small);
    ASSERT_EQ(surface.calls().size(), 4u + 9 * 3);
    EXPECT_EQ(Calls(surface.calls().begin(), surface.calls().begin() + 10),
              (Calls{"SelectPen 91,99,120", "SetTextColor 124,144,173", "SetGroundColor 37,43,52",
                     "SelectFont 12", "MoveTo 137,361", "LineTo 137,522", "TextOut 138,349 \"1\"",
                     "MoveTo 191,361", "LineTo 191,522", "TextOut 192,349 \"2\""}));
    EXPECT_EQ(surface.calls().back(), "TextOut 570,349 \"9\"");
}

TEST_F(PadViewPaint, TheRulerGoesToTheRoundedNumberOfBeats) {
    // The plot has room for nine numbers; 53 / 54 rounds to 1, 26 / 54 to 0, 27 / 54 to 1.
    for (const auto& [total, numbers] : {std::pair{53, 2u}, {26, 1u}, {27, 2u}, {5000, 9u}}) {
        surface.clear();
        drawRuler(surface, scale, total, small);
        EXPECT_EQ(textsOf(surface).size(), numbers) << total;
    }
}

TEST_F(PadViewPaint, TheRulerShowsTheBeatsOfThePlotOnly) {
    // Beat 2 is at 137 + 108 - 108, beat 10 at 569: the next would be at 623.
    scale.horizontal = 108;
    drawRuler(surface, scale, 5000, small);
    const Calls texts = textsOf(surface);
    ASSERT_EQ(texts.size(), 9u);
    EXPECT_EQ(texts.front(), "138,349 \"3\"");
    EXPECT_EQ(texts.back(), "570,349 \"11\"");
    // A pixel further, and beat 2 is gone.
    surface.clear();
    scale.horizontal = 109;
    drawRuler(surface, scale, 5000, small);
    EXPECT_EQ(textsOf(surface).front(), "191,349 \"4\"");
}

TEST_F(PadViewPaint, TheRulerOfTheLongestContentIsAsQuick) {
    scale.pixelsPerBeat = 20.0;
    drawRuler(surface, scale, kFarPixel, small);
    EXPECT_EQ(textsOf(surface).size(), 23u);  // 137 + 20 * 22 is 577
    surface.clear();
    scale.horizontal = 10000000;
    drawRuler(surface, scale, kFarPixel, small);
    EXPECT_EQ(textsOf(surface).front(), "138,349 \"500001\"");
    EXPECT_EQ(textsOf(surface).size(), 23u);
}

TEST_F(PadViewPaint, TheLitPadShinesAndTheOthersRest) {
    drawPadRows(surface, scale, 1, small, large);
    const Calls first(surface.calls().begin(), surface.calls().begin() + 18);
    EXPECT_EQ(
        first,
        (Calls{"SelectFont 12", "SelectPen 160,172,191", "SelectBrush 37,43,52", "SetTextColor 124,144,173",
               "SetGroundColor 37,43,52", "TextOut 101,361 \"Pad 1\"", "SelectPen 91,99,120",
               "MoveTo 101,361", "LineTo 583,361", "SelectPen 160,172,191", "SelectBrush 160,172,191",
               "SetTextColor 0,0,0", "SetGroundColor 160,172,191", "Rectangle 101,371,134,381",
               "TextOut 101,371 \"Pad 2\"", "SelectPen 91,99,120", "MoveTo 101,371", "LineTo 583,371"}));
}

TEST_F(PadViewPaint, SixteenNamesHaveALineAboveEachAndOneBelow) {
    drawPadRows(surface, scale, -1, small, large);
    EXPECT_EQ(textsOf(surface).size(), 16u);
    EXPECT_EQ(textsOf(surface).back(), "101,511 \"Pad 16\"");
    EXPECT_EQ(std::count(surface.calls().begin(), surface.calls().end(), "SelectPen 91,99,120"), 17);
    EXPECT_EQ(Calls(surface.calls().end() - 2, surface.calls().end()),
              (Calls{"MoveTo 101,521", "LineTo 583,521"}));
}

TEST_F(PadViewPaint, RowsOf13AndAboveHaveTheLargeFont) {
    for (const auto& [height, font] : {std::pair{10, "SelectFont 12"}, {15, "SelectFont 14"}}) {
        surface.clear();
        scale.rowHeight = height;
        drawPadRows(surface, scale, 0, small, large);
        EXPECT_EQ(surface.calls().front(), font);
    }
}

TEST_F(PadViewPaint, GrainsAreKeptWhereTheyLie) {
    scale.vertical = 5;
    const GrainListEntry grains[] = {grainFrom(0, kBeat), grainFrom(kBeat, kBeat),
                                     grainFrom(kBeat, 3 * kBeat, true)};
    const EventPlot plot = plotGrains(scale, 2, grains);
    ASSERT_EQ(plot.size(), 3u);
    // The row's top is 361 + 20 - 5; a margin of 1.
    EXPECT_EQ(plot[0].rect, (Rect{137, 377, 191, 385}));
    EXPECT_EQ(plot[0].tail, 0);
    // A grain of no width keeps its entry.
    EXPECT_EQ(plot[1].rect, (Rect{191, 377, 191, 385}));
    EXPECT_EQ(plot[1].grain, 1);
    EXPECT_EQ(plot[1].start, kBeat);
    // A tail grain's rectangle is its span of time.
    EXPECT_EQ(plot[2].rect, (Rect{191, 377, 299, 385}));
    EXPECT_EQ(plot[2].tail, 1);
}

TEST_F(PadViewPaint, AnEmptyPadHasNoMarkOfItsLength) {
    EXPECT_FALSE(hasLengthMarker(0, false));
    EXPECT_FALSE(hasLengthMarker(-1, false));
    EXPECT_TRUE(hasLengthMarker(1, false));
    EXPECT_TRUE(hasLengthMarker(0, true));
}

TEST_F(PadViewPaint, TheLengthMarkIsAFlagWithARoundHead) {
    drawLengthMarker(surface, 353, 362, 370);
    EXPECT_EQ(surface.calls(),
              (Calls{"SelectPen 255,255,255", "MoveTo 353,363", "LineTo 353,370", "MoveTo 354,364",
                     "LineTo 354,369", "SelectBrush 255,255,255", "Ellipse 355,363,361,370"}));
}

TEST_F(PadViewPaint, AGrainIsABlockWithADarkAndALightEdge) {
    drawGrain(surface, {137, 362, 191, 370}, false, GrainState::normal);
    EXPECT_EQ(surface.calls(),
              (Calls{"SelectPen 152,214,147", "SelectBrush 152,214,147", "Rectangle 137,362,191,370",
                     "SelectPen 90,128,88", "MoveTo 137,370", "LineTo 190,370", "LineTo 190,362",
                     "SelectPen 206,255,202", "MoveTo 138,370", "LineTo 138,362", "LineTo 191,362"}));
}

TEST_F(PadViewPaint, ATailGrainIsAPentagon15PixelsWide) {
    // 4 * 8 / 10 is 3: the shoulder is at 137 + 15 - 3. The tip is at half the sum of top and bottom.
    drawGrain(surface, {137, 362, 400, 370}, true, GrainState::normal);
    EXPECT_EQ(surface.calls(),
              (Calls{"SelectPen 124,144,173", "SelectBrush 124,144,173",
                     "Polygon 137,362 149,362 152,366 149,370 137,370", "SelectPen 91,99,120",
                     "MoveTo 137,370", "LineTo 148,370", "LineTo 151,366", "SelectPen 160,172,191",
                     "MoveTo 138,370", "LineTo 138,362", "LineTo 149,362"}));
}

/// Outline, fill, dark and light edge, in the order of drawing.
Calls colorsOf(bool tail, GrainState state) {
    RecordingSurface surface;
    drawGrain(surface, {0, 0, 20, 20}, tail, state);
    Calls colors;
    for (const std::string& call : surface.calls())
        if (call.starts_with("SelectPen ") || call.starts_with("SelectBrush "))
            colors.push_back(call.substr(call.find(' ') + 1));
    return colors;
}

TEST_F(PadViewPaint, SelectedAndHoveredGrainsHaveTheirOwnColours) {
    EXPECT_EQ(colorsOf(false, GrainState::selected),
              (Calls{"90,128,88", "90,128,88", "0,0,0", "152,214,147"}));
    EXPECT_EQ(colorsOf(false, GrainState::hovered),
              (Calls{"206,255,202", "206,255,202", "90,128,88", "255,255,255"}));
    EXPECT_EQ(colorsOf(true, GrainState::selected),
              (Calls{"91,99,120", "91,99,120", "0,0,0", "124,144,173"}));
    EXPECT_EQ(colorsOf(true, GrainState::hovered),
              (Calls{"160,172,191", "160,172,191", "91,99,120", "255,255,255"}));
}

}  // namespace
}  // namespace marnoth::test::pad_view_paint_test
