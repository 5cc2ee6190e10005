#include <gtest/gtest.h>

#include <limits>

#include "editor/TestPage.h"
#include "editor/controls/BitmapKnobCtrl.h"
#include "editor/controls/BitmapToggleCtrl.h"
#include "editor/controls/ZoomButton.h"
#include "platform/drawing/RecordingSurface.h"

namespace marnoth::test::buttons_and_knobs_test {
namespace {

using test::Heard;
using test::TestPage;

// Pictures are told apart by their sizes in the recorded calls.
const Bitmap kUp(16, 15);
const Bitmap kDown(17, 15);
const Bitmap kFocus(18, 15);
const Bitmap kDisabled(19, 15);
const Bitmap kKnobs(1088, 17);

constexpr Point kInside{105, 205};
constexpr Point kOutside{300, 300};

/// A toggle at 100, 200 that the page sees first.
struct ToggleOnPage {
    explicit ToggleOnPage(bool notifyOnPress = true) {
        toggle.setPlace(Rect::at(100, 200, 0, 0));
        toggle.LoadToggleBitmaps(kUp, kDown, nullptr, nullptr, false, notifyOnPress);
        toggle.m_pCallback = &page;
        page.controls = {&toggle};
    }
    std::string drawn() {
        RecordingSurface surface;
        toggle.paint(surface);
        return surface.calls().empty() ? "" : surface.calls().front();
    }

    TestPage page;
    CPlugInFilterControl<CBitmapToggleCtrl> toggle{page, 1024};
};

const std::string kDrawnUp = "BitBlt 100,200,116,215 from 0,0 of 16x15";
const std::string kDrawnDown = "BitBlt 100,200,116,215 from 0,0 of 17x15";

TEST(Toggle, TakesTheSizeOfItsBitmapAndStartsUp) {
    ToggleOnPage it;
    EXPECT_EQ(it.toggle.place(), Rect::at(100, 200, 16, 15));
    EXPECT_EQ(it.drawn(), kDrawnUp);
}

TEST(Toggle, APressTurnsItAndTheCommandComesWithThePress) {
    ToggleOnPage it;
    bool downInCommand = false;
    it.page.onCommand = [&](int) { downInCommand = it.toggle.isDown(); };
    it.page.screen.press(kInside);
    EXPECT_EQ(it.page.take(), Heard{"command 1024"});
    EXPECT_TRUE(downInCommand);
    EXPECT_EQ(it.drawn(), kDrawnDown);
    it.page.screen.release(kInside);
    EXPECT_EQ(it.page.take(), Heard{});
    EXPECT_TRUE(it.toggle.isDown());
}

TEST(Toggle, APressThatSlidesOffShowsTheOldStateThoughTheCommandIsOut) {
    ToggleOnPage it;
    it.page.screen.press(kInside);
    EXPECT_EQ(it.page.take(), Heard{"command 1024"});
    it.page.screen.move(kOutside);
    EXPECT_EQ(it.drawn(), kDrawnUp);
    it.page.screen.move(kInside);
    EXPECT_EQ(it.drawn(), kDrawnDown);
    it.page.screen.move(kOutside);
    it.page.screen.release(kOutside);
    EXPECT_FALSE(it.toggle.isDown());
    EXPECT_EQ(it.page.take(), Heard{});
    it.page.screen.move(kInside);
    EXPECT_FALSE(it.toggle.isDown()) << "it is no longer pressed";
    EXPECT_FALSE(it.page.captured());
}

TEST(Toggle, ADoubleClickIsTwoPresses) {
    ToggleOnPage it;
    it.page.screen.doubleClick(kInside);
    EXPECT_EQ(it.page.take(), (Heard{"command 1024", "command 1024"}));
    EXPECT_FALSE(it.toggle.isDown());
}

TEST(Toggle, TheSecondPressOfADoubleClickPassesThePageAgain) {
    ToggleOnPage it;
    it.toggle.handle({ControlEventKind::doubleClick, {1, 1}});
    EXPECT_EQ(it.page.seenByCallback, Heard{"1024 leftDown"});
    EXPECT_TRUE(it.toggle.isDown());
}

TEST(Toggle, WithoutNotifyOnPressTheCommandComesWithTheReleaseAndTheKeyboardStays) {
    ToggleOnPage it(false);
    it.page.screen.press(kInside);
    EXPECT_EQ(it.page.take(), Heard{});
    EXPECT_EQ(it.page.focused(), nullptr);
    it.page.screen.release(kInside);
    EXPECT_EQ(it.page.take(), Heard{"command 1024"});
}

TEST(Toggle, SpaceTurnsItWithoutACommand) {
    ToggleOnPage it;
    it.page.consumeKeys = false;
    it.page.focus(&it.toggle);
    it.page.screen.key(kKeySpace);
    EXPECT_TRUE(it.toggle.isDown());
    EXPECT_EQ(it.page.take(), Heard{});
}

TEST(Toggle, AKeyThatThePageConsumesDoesNotReachIt) {
    ToggleOnPage it;
    it.page.screen.press(kInside);
    it.page.screen.release(kInside);
    it.page.screen.key(kKeySpace);
    EXPECT_TRUE(it.toggle.isDown()) << "as the press left it";
    EXPECT_EQ(it.page.seenByCallback.back(), "1024 key 32");
}

TEST(Toggle, AStateThatIsWrittenTellsNobody) {
    ToggleOnPage it;
    it.toggle.setDown(true);
    EXPECT_EQ(it.drawn(), kDrawnDown);
    EXPECT_EQ(it.page.repaints, 1);
    EXPECT_EQ(it.page.take(), Heard{});
}

TEST(Toggle, DisabledWithoutABitmapForItDrawsAsIfEnabled) {
    ToggleOnPage it;
    it.toggle.setEnabled(false);
    EXPECT_EQ(it.drawn(), kDrawnUp);
    it.toggle.setDown(true);
    EXPECT_EQ(it.drawn(), kDrawnDown);
    it.toggle.LoadToggleBitmaps(kUp, kDown, nullptr, &kDisabled, false, true);
    EXPECT_EQ(it.drawn(), "BitBlt 100,200,116,215 from 0,0 of 19x15");
}

TEST(Toggle, DisabledLeavesTheMouseToThePage) {
    ToggleOnPage it;
    it.toggle.setEnabled(false);
    it.page.screen.press(kInside);
    EXPECT_EQ(it.page.take(), Heard{"page down"});
    EXPECT_FALSE(it.toggle.isDown());
}

TEST(Toggle, ItsFocusShowsOnlyWhileItIsUpAndTheFrameLiesOnePixelInside) {
    ToggleOnPage it;
    it.toggle.LoadToggleBitmaps(kUp, kDown, &kFocus, nullptr, true, true);
    EXPECT_EQ(it.drawn(), kDrawnUp);
    it.page.focus(&it.toggle);
    RecordingSurface surface;
    it.toggle.paint(surface);
    EXPECT_EQ(surface.calls().front(), "BitBlt 100,200,116,215 from 0,0 of 18x15");
    EXPECT_EQ(surface.calls().back(), "Rectangle 101,201,115,214");
    it.toggle.setDown(true);
    EXPECT_EQ(it.drawn(), kDrawnDown);
}

TEST(Toggle, AReleaseThatComesFromElsewhereReachesThePageAtItsPlaceOnThePage) {
    ToggleOnPage it;
    it.page.screen.press(kOutside);
    it.page.screen.release(kInside);
    EXPECT_EQ(it.page.take(), Heard{"page down"}) << "the page itself hears no release";
    EXPECT_EQ(it.page.seenByCallback, Heard{"1024 leftUp 105,205"});
    EXPECT_FALSE(it.toggle.isDown());
}

TEST(Toggle, APressWhoseMouseIsTakenAwayEnds) {
    ToggleOnPage it;
    it.page.screen.press(kInside);
    it.page.releaseMouse();
    it.toggle.handle({ControlEventKind::captureLost, {}});
    it.page.screen.move(kInside);
    it.toggle.setDown(false);
    it.page.screen.move({106, 206});
    EXPECT_FALSE(it.toggle.isDown());
}

/// A push button of either class at 50, 27.
template <class Button>
struct ButtonOnPage {
    ButtonOnPage() {
        button.setPlace(Rect::at(50, 27, 0, 0));
        button.LoadBitmaps(kUp, kDown);
        page.controls = {&button};
    }
    bool looksDown() {
        RecordingSurface surface;
        button.paint(surface);
        return surface.calls() == Heard{"BitBlt 50,27,66,42 from 0,0 of 17x15"};
    }

    TestPage page;
    CPlugInFilterControl<Button> button{page, 1165};
};

TEST(PushButton, PostsItsCommandWhenItIsLetGoOverItself) {
    ButtonOnPage<CBitmapButton> it;
    it.page.screen.press({55, 33});
    EXPECT_TRUE(it.looksDown());
    EXPECT_EQ(it.page.focused(), &it.button);
    EXPECT_EQ(it.page.take(), Heard{});
    it.page.screen.release({55, 33});
    EXPECT_FALSE(it.looksDown());
    EXPECT_EQ(it.page.take(), Heard{"command 1165"});
}

TEST(PushButton, LetGoElsewhereItDoesNothing) {
    ButtonOnPage<CBitmapButton> it;
    it.page.screen.press({55, 33});
    it.page.screen.move({66, 33});
    EXPECT_FALSE(it.looksDown());
    it.page.screen.release({66, 33});
    EXPECT_EQ(it.page.take(), Heard{});
    EXPECT_FALSE(it.page.captured());
}

TEST(PushButton, TheSecondClickOfAFastPairCountsForZoomButtonsOnly) {
    ButtonOnPage<CBitmapButton> plain;
    plain.page.screen.doubleClick({55, 33});
    EXPECT_EQ(plain.page.take(), Heard{"command 1165"});
    ButtonOnPage<CZoomButton> zoom;
    zoom.page.screen.doubleClick({55, 33});
    EXPECT_EQ(zoom.page.take(), (Heard{"command 1165", "command 1165"}));
}

/// A knob at 185, 6 as the page has them: 64 frames of 17 by 17, half by default, no cursor in a drag.
struct KnobOnPage {
    KnobOnPage() {
        knob.setPlace(Rect::at(185, 6, 0, 0));
        knob.LoadKnobBitmap(kKnobs, 17, 17, 0.5f, false, {});
        page.controls = {&knob};
    }
    std::string drawn() {
        RecordingSurface surface;
        knob.paint(surface);
        return surface.calls().empty() ? "" : surface.calls().front();
    }

    TestPage page;
    CPlugInFilterControl<CBitmapKnobCtrl> knob{page, 1093};
};

TEST(Knob, ShowsOneOf64Frames) {
    KnobOnPage it;
    const auto shown = [&](double value) {
        it.knob.SetValue(value);
        return it.drawn();
    };
    EXPECT_EQ(shown(0.0), "BitBlt 185,6,202,23 from 0,0 of 1088x17");
    EXPECT_EQ(shown(0.01), "BitBlt 185,6,202,23 from 0,0 of 1088x17") << "0.63 is cut";
    EXPECT_EQ(shown(0.02), "BitBlt 185,6,202,23 from 17,0 of 1088x17") << "1.26 is frame 1";
    EXPECT_EQ(shown(0.5), "BitBlt 185,6,202,23 from 527,0 of 1088x17") << "31.5 is frame 31";
    EXPECT_EQ(shown(1.0), "BitBlt 185,6,202,23 from 1071,0 of 1088x17") << "frame 63";
}

TEST(Knob, DrawsNothingForAFrameThatTheStripLacks) {
    KnobOnPage it;
    const Bitmap half(32 * 17, 17);
    it.knob.LoadKnobBitmap(half, 17, 17, 0.5f, false, {});
    it.knob.SetValue(0.5);
    EXPECT_NE(it.drawn(), "") << "frame 31 is the last";
    it.knob.SetValue(0.51);
    EXPECT_EQ(it.drawn(), "") << "frame 32";
}

TEST(Knob, AValueThatIsSetIsRoundedAndHeldAndToldToNobody) {
    KnobOnPage it;
    const auto position = [&](double value) {
        it.knob.SetValue(value);
        return it.knob.position();
    };
    EXPECT_EQ(position(0.494), 49);
    EXPECT_EQ(position(0.496), 50);
    EXPECT_EQ(position(-0.3), 0);
    EXPECT_EQ(position(7.0), 100);
    EXPECT_EQ(position(std::numeric_limits<double>::quiet_NaN()), 0);
    EXPECT_EQ(it.page.take(), Heard{});
}

TEST(Knob, OnePixelUpIsOneStepAndThePointerStays) {
    KnobOnPage it;
    it.knob.SetValue(0.5);
    it.page.screen.press({190, 12});
    EXPECT_EQ(it.page.screen.cursor(), PageCursor::none);
    it.page.screen.move({190, 9});
    EXPECT_EQ(it.knob.position(), 53);
    EXPECT_EQ(it.page.screen.pointer(), (Point{190, 12}));
    it.page.screen.move({190, 2});
    EXPECT_EQ(it.knob.position(), 63) << "counted from the press point again";
    it.page.screen.move({190, 17});
    EXPECT_EQ(it.knob.position(), 58);
    EXPECT_EQ(it.page.take(),
              (Heard{"scroll 1093 5 50", "scroll 1093 5 53", "scroll 1093 5 63", "scroll 1093 5 58"}));
}

TEST(Knob, MovingSidewaysTurnsNothingButIsReported) {
    KnobOnPage it;
    it.knob.SetValue(0.5);
    it.page.screen.press({190, 12});
    it.page.screen.move({250, 12});
    EXPECT_EQ(it.page.take(), (Heard{"scroll 1093 5 50", "scroll 1093 5 50"}));
    EXPECT_EQ(it.page.screen.pointer(), (Point{190, 12}));
}

TEST(Knob, AtItsEndADragFurtherIsStillReported) {
    KnobOnPage it;
    it.knob.SetValue(1.0);
    it.page.screen.press({190, 12});
    it.page.screen.move({190, -30});
    it.page.screen.move({190, 212});
    EXPECT_EQ(it.page.take(), (Heard{"scroll 1093 5 100", "scroll 1093 5 100", "scroll 1093 5 0"}));
}

TEST(Knob, EveryStepOfADragIsExact) {
    KnobOnPage it;
    it.page.screen.press({190, 12});
    for (int step = 1; step <= 100; ++step) {
        it.page.screen.move({190, 11});
        EXPECT_EQ(it.knob.position(), step);
    }
}

TEST(Knob, TheReleaseReportsNothingAndBringsTheArrowBack) {
    KnobOnPage it;
    it.page.screen.press({190, 12});
    it.page.take();
    it.page.screen.release({400, 400});
    EXPECT_EQ(it.page.take(), Heard{}) << "it goes to the knob, not to the page";
    EXPECT_FALSE(it.page.captured());
    EXPECT_EQ(it.page.screen.cursor(), PageCursor::arrow);
    it.page.screen.move({190, 9});
    EXPECT_EQ(it.knob.position(), 0) << "the drag is over";
}

TEST(Knob, ADoubleClickSetsTheDefaultAndIsReportedAfterThePress) {
    KnobOnPage it;
    it.knob.SetValue(0.2);
    it.page.screen.doubleClick({190, 12});
    EXPECT_EQ(it.page.take(), (Heard{"scroll 1093 5 20", "scroll 1093 5 50"}));
    EXPECT_EQ(it.knob.position(), 50);
}

TEST(Knob, ADoubleClickWithTheMoveThatAHandMakesGivesThreeReports) {
    KnobOnPage it;
    it.page.screen.press({190, 12});
    it.page.screen.move({190, 12});
    it.page.screen.release({190, 12});
    it.page.doubleClick({190, 12}, {});
    EXPECT_EQ(it.page.take().size(), 3u);
}

TEST(Knob, WithACursorOfItsOwnItShowsThatInTheDragAndOverItself) {
    KnobOnPage it;
    it.knob.LoadKnobBitmap(kKnobs, 17, 17, 0.5f, true, PageCursor::sizeVertical);
    it.page.screen.move({190, 12});
    EXPECT_EQ(it.page.screen.cursor(), PageCursor::sizeVertical);
    it.page.screen.press({190, 12});
    it.page.screen.move({400, 400});
    EXPECT_EQ(it.page.screen.cursor(), PageCursor::sizeVertical);
    it.page.screen.release({400, 400});
    it.knob.LoadKnobBitmap(kKnobs, 17, 17, 0.5f, true, {});
    it.page.screen.press({190, 12});
    EXPECT_EQ(it.page.screen.cursor(), PageCursor::arrow);
}

TEST(Knob, ADragIsRelativeFromItsPressToItsRelease) {
    KnobOnPage it;
    it.page.screen.press({190, 12});
    EXPECT_TRUE(it.page.screen.dragsRelatively());
    it.page.screen.release({190, 12});
    EXPECT_FALSE(it.page.screen.dragsRelatively());
}

TEST(Knob, TheWheelTurnsItByOneForEachClickAndReportsLikeADrag) {
    KnobOnPage it;
    it.knob.SetValue(0.5);
    it.page.screen.wheel({190, 12}, WheelAxis::vertical, 1);
    it.page.screen.wheel({190, 12}, WheelAxis::vertical, -3);
    EXPECT_EQ(it.page.take(), (Heard{"scroll 1093 5 51", "scroll 1093 5 48"}));
    EXPECT_EQ(it.page.focused(), nullptr);
    EXPECT_FALSE(it.page.captured());
}

TEST(Knob, AtItsEndsTheWheelTurnsNothingAndReportsNothing) {
    KnobOnPage it;
    it.knob.SetValue(0.99);
    it.page.screen.wheel({190, 12}, WheelAxis::vertical, 5);
    it.page.screen.wheel({190, 12}, WheelAxis::vertical, 1);
    EXPECT_EQ(it.page.take(), Heard{"scroll 1093 5 100"});
    EXPECT_TRUE(it.knob.turnsBy(-1));
    EXPECT_FALSE(it.knob.turnsBy(1));
}

TEST(Knob, TheWheelDoesNotDisturbADrag) {
    KnobOnPage it;
    it.knob.SetValue(0.5);
    it.page.screen.press({190, 12});
    it.page.screen.wheel({190, 12}, WheelAxis::vertical, 4);
    EXPECT_EQ(it.knob.position(), 50);
}

TEST(Knob, DefaultsToFullUntilItIsToldOtherwise) {
    TestPage page;
    CBitmapKnobCtrl knob(page, 1);
    knob.handle({ControlEventKind::doubleClick, {}});
    EXPECT_EQ(knob.position(), 100);
}

}  // namespace
}  // namespace marnoth::test::buttons_and_knobs_test
