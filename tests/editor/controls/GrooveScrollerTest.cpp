#include <gtest/gtest.h>

#include <limits>

#include "editor/controls/GrooveScroller.h"
#include "platform/drawing/RecordingSurface.h"

namespace marnoth::test::groove_scroller_test {
namespace {

constexpr int kMost = std::numeric_limits<int>::max();
constexpr int kLeast = std::numeric_limits<int>::min();

/// Below the pads' grains: a track of 453 pixels, a plot of 446, and content of 800 to begin with.
CGrooveScroller horizontal() {
    CGrooveScroller scroller;
    scroller.setUp({100, 537, 553, 545}, CGrooveScroller::kHorizontal, 446, 800);
    return scroller;
}

/// Beside them: a track of 154 pixels, a plot of 162.
CGrooveScroller vertical(int total) {
    CGrooveScroller scroller;
    scroller.setUp({585, 350, 593, 504}, CGrooveScroller::kVertical, 162, total);
    return scroller;
}

TEST(GrooveScroller, TheThumbIsThePagesPartOfTheTrack) {
    // 453 * 446 / 800 = 252.5
    EXPECT_EQ(horizontal().thumb(), (Rect{100, 537, 352, 545}));
    EXPECT_EQ(horizontal().position(), 0);
}

TEST(GrooveScroller, TheThumbIsMovedByThePositionsPartOfTheTrack) {
    CGrooveScroller scroller = horizontal();
    scroller.SetTrackPosition(-1, 354, -1);
    // 453 * 354 / 800 = 200.4
    EXPECT_EQ(scroller.thumb(), (Rect{300, 537, 552, 545}));
}

TEST(GrooveScroller, AVerticalThumbRunsAlongTheHeight) {
    CGrooveScroller scroller = vertical(480);
    scroller.SetTrackPosition(-1, 318, -1);
    // 154 * 318 / 480 = 102.0 and 154 * 162 / 480 = 51.98
    EXPECT_EQ(scroller.thumb(), (Rect{585, 452, 593, 503}));
}

TEST(GrooveScroller, ThePositionStopsAtTotalMinusPage) {
    CGrooveScroller scroller = horizontal();
    scroller.SetTrackPosition(-1, kMost, -1);
    EXPECT_EQ(scroller.position(), 354);
    scroller.SetTrackPosition(-1, -5, -1);
    EXPECT_EQ(scroller.position(), 0);
}

TEST(GrooveScroller, APositionAtTheEndComesBackWhenTheContentShrinks) {
    CGrooveScroller scroller = horizontal();
    scroller.SetTrackPosition(-1, 354, -1);
    scroller.SetTrackPosition(1200, scroller.position(), -1);
    EXPECT_EQ(scroller.position(), 354);
    scroller.SetTrackPosition(600, scroller.position(), -1);
    EXPECT_EQ(scroller.position(), 154);
}

TEST(GrooveScroller, ContentThatFitsLetsTheThumbFillTheTrack) {
    CGrooveScroller scroller = horizontal();
    scroller.SetTrackPosition(446, 0, -1);
    EXPECT_EQ(scroller.thumb(), scroller.track());

    CGrooveScroller rows = vertical(800);
    rows.SetTrackPosition(160, 0, -1);
    EXPECT_EQ(rows.total(), 162);
    EXPECT_EQ(rows.thumb(), rows.track());
}

TEST(GrooveScroller, ThePageIsHeldToTheTotal) {
    CGrooveScroller scroller = horizontal();
    scroller.SetTrackPosition(500, 0, 600);
    EXPECT_EQ(scroller.page(), 500);
    // The total isn't smaller than the page that was there.
    scroller.SetTrackPosition(300, 0, 100);
    EXPECT_EQ(scroller.total(), 500);
    EXPECT_EQ(scroller.page(), 100);
    scroller.SetTrackPosition(300, 0, 0);
    EXPECT_EQ(scroller.total(), 300);
    EXPECT_EQ(scroller.page(), 0);
}

TEST(GrooveScroller, NoContentAndNoPageFillTheTrackToo) {
    CGrooveScroller scroller;
    scroller.setUp({0, 0, 50, 8}, CGrooveScroller::kHorizontal, 0, 0);
    EXPECT_EQ(scroller.thumb(), scroller.track());
}

TEST(GrooveScroller, OnlyAPressOnTheThumbBeginsADrag) {
    CGrooveScroller scroller = horizontal();
    EXPECT_FALSE(scroller.BeginThumbDrag({352, 540}));
    EXPECT_FALSE(scroller.BeginThumbDrag({200, 545}));
    EXPECT_FALSE(scroller.isDragging());
    EXPECT_TRUE(scroller.BeginThumbDrag({351, 544}));
    EXPECT_TRUE(scroller.isDragging());
    scroller.endDrag();
    EXPECT_FALSE(scroller.isDragging());
}

TEST(GrooveScroller, DraggingMovesTheContentByTheTracksScale) {
    CGrooveScroller scroller = horizontal();
    scroller.SetTrackPosition(-1, 100, -1);
    ASSERT_TRUE(scroller.BeginThumbDrag({200, 540}));
    scroller.dragTo({250, 0});
    EXPECT_EQ(scroller.position(), 188);  // 50 * 800 / 453 = 88.3
    scroller.dragTo({190, 540});
    EXPECT_EQ(scroller.position(), 83);  // -10 * 800 / 453 = -17.7
    scroller.dragTo({200, 540});
    EXPECT_EQ(scroller.position(), 100);
}

TEST(GrooveScroller, DraggingAVerticalOneTakesTheHeightOfThePoint) {
    CGrooveScroller scroller = vertical(480);
    ASSERT_TRUE(scroller.BeginThumbDrag({590, 360}));
    scroller.dragTo({0, 380});
    EXPECT_EQ(scroller.position(), 62);  // 20 * 480 / 154 = 62.3
}

TEST(GrooveScroller, DraggingStopsAtTheEnds) {
    CGrooveScroller scroller = horizontal();
    ASSERT_TRUE(scroller.BeginThumbDrag({200, 540}));
    scroller.dragTo({kMost, 540});
    EXPECT_EQ(scroller.position(), 354);
    scroller.dragTo({kLeast, 540});
    EXPECT_EQ(scroller.position(), 0);
}

TEST(GrooveScroller, TheLongestContentOverflowsNothing) {
    CGrooveScroller scroller = horizontal();
    scroller.SetTrackPosition(kMost, kMost, -1);
    EXPECT_EQ(scroller.position(), kMost - 446);
    scroller.SetTrackPosition(-1, 0, kMost);
    EXPECT_EQ(scroller.thumb(), scroller.track());
    ASSERT_TRUE(scroller.BeginThumbDrag({200, 540}));
    scroller.dragTo({kMost, kMost});
    scroller.dragTo({kLeast, kLeast});
    EXPECT_EQ(scroller.position(), 0);
}

TEST(GrooveScroller, WithoutADragThePointerMovesNothing) {
    CGrooveScroller scroller = horizontal();
    scroller.dragTo({300, 540});
    EXPECT_EQ(scroller.position(), 0);
}

TEST(GrooveScroller, IsATrackWithARoundThumb) {
    RecordingSurface surface;
    horizontal().paint(surface);
    EXPECT_EQ(surface.calls(),
              (std::vector<std::string>{"SelectPen 124,144,173", "SelectBrush 124,144,173",
                                        "Rectangle 100,537,553,545", "SelectPen 160,172,191",
                                        "SelectBrush 160,172,191", "RoundRect 100,537,352,545 corners 5,5"}));
}

}  // namespace
}  // namespace marnoth::test::groove_scroller_test
