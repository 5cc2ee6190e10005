#include <gtest/gtest.h>

#include "editor/PanelRig.h"

/// The wheel over the page. A beat is 54 pixels wide and a row 10 pixels high while nothing is zoomed.
namespace marnoth::test::wheel_test {
namespace {

constexpr Point kInView = {300, 400};
constexpr auto kDown = WheelAxis::vertical;
constexpr auto kAcross = WheelAxis::horizontal;

class Wheel : public PanelRig {
protected:
    /// Twenty beats, which is more than is in view.
    void openLong() {
        rig.fillPad(0, 20);
        open();
    }
    void wheel(Point at, int steps, WheelAxis axis = kDown) { rig.window.wheel(at, axis, steps); }
    void wheelOn(int id, int steps) { wheel(rig.on(id), steps); }
    Point scrolled() const { return {rig.page->scale().horizontal, rig.page->scale().vertical}; }
};

TEST_F(Wheel, AcrossScrollsTheViewByABeatForEachStep) {
    openLong();
    wheel(kInView, 2, kAcross);
    EXPECT_EQ(scrolled(), (Point{108, 0}));
    wheel(kInView, -1, kAcross);
    EXPECT_EQ(scrolled(), (Point{54, 0}));
    wheel(kInView, -9, kAcross);
    EXPECT_EQ(scrolled(), (Point{0, 0}));
}

TEST_F(Wheel, StopsAtTheEndOfTheContent) {
    openLong();
    wheel(kInView, 1000000000, kAcross);
    // Twenty-one beats, of which 446 pixels are in view.
    EXPECT_EQ(scrolled(), (Point{21 * 54 - 446, 0}));
}

TEST_F(Wheel, DownScrollsByARowWhereRowsAreHigherThanTheView) {
    openLong();
    wheel(kInView, -3);
    EXPECT_EQ(scrolled(), (Point{0, 0})) << "all sixteen rows are in view";
    for (int i = 0; i < 4; ++i) rig.click(rig.on(kRowsHigher));
    wheel(kInView, -3);
    EXPECT_EQ(scrolled(), (Point{0, 90}));
    wheel(kInView, 1);
    EXPECT_EQ(scrolled(), (Point{0, 60}));
}

TEST_F(Wheel, WithShiftAWheelThatGoesDownGoesToTheRight) {
    openLong();
    rig.window.hold(kKeyShift);
    wheel(kInView, -1);
    EXPECT_EQ(scrolled(), (Point{54, 0}));
}

TEST_F(Wheel, WithControlItZoomsAsTheButtonsDo) {
    openLong();
    rig.window.hold(kKeyControl);
    wheel(kInView, 1);
    EXPECT_EQ(rig.page->scale().pixelsPerBeat, 81.0);
    wheel(kInView, 1000000000);
    EXPECT_EQ(rig.page->scale().pixelsPerBeat, 200.0);
    wheel(kInView, -1000000000);
    EXPECT_EQ(rig.page->scale().pixelsPerBeat, 20.0);
    EXPECT_EQ(rig.page->scale().rowHeight, 10);
    wheel(kInView, 1, kAcross);
    EXPECT_EQ(rig.page->scale().pixelsPerBeat, 20.0);
}

TEST_F(Wheel, ScrollsTheLoopBinByRows) {
    for (int file = 0; file < 16; ++file) rig.addFile("beat.wav", 1);
    open();
    wheel(PageRig::onBinRow(0), -2);
    EXPECT_EQ(rig.page->binPosition(), (Point{0, 30}));
    wheel(PageRig::onBinRow(0), 5);
    EXPECT_EQ(rig.page->binPosition(), (Point{0, 0}));
}

TEST_F(Wheel, ElsewhereItDoesNothing) {
    openLong();
    for (const Point at : {Point{20, 548}, Point{60, 290}, PageRig::onPadImage(4), rig.on(kLowKey),
                           rig.on(kPadTail), rig.on(kPadVolumeText)}) {
        wheel(at, -1);
        wheel(at, 1, kAcross);
    }
    EXPECT_EQ(rig.calls(), Calls{});
    EXPECT_EQ(scrolled(), (Point{0, 0}));
}

TEST_F(Wheel, DuringADragItDoesNothing) {
    openLong();
    rig.press(PageRig::onBeat(0, 1));
    wheel(kInView, 1, kAcross);
    EXPECT_EQ(scrolled(), (Point{0, 0}));
    rig.release(PageRig::onBeat(0, 1));
    rig.calls();
    const Point knob = rig.on(kFirstVolumeKnob);
    rig.press(knob);
    rig.changes();
    wheel(knob, 1);
    EXPECT_EQ(rig.changes(), Calls{});
}

// Over controls.

TEST_F(Wheel, OverAKnobItTurnsByAStepBehindOneUndoStateForTheRun) {
    open();
    wheelOn(kFirstVolumeKnob + 4, 1);
    wheelOn(kFirstVolumeKnob + 4, 2);
    EXPECT_EQ(rig.changes(),
              (Calls{"PushUndoState", "SetPadVolume 4 1.01999998", "SetPadVolume 4 1.05999994"}));
    EXPECT_EQ(rig.page->currentPad(), 4);
    EXPECT_EQ(rig.state(kFirstVolumeKnob + 4), 53);
}

TEST_F(Wheel, MovesOfTheMouseDoNotEndARun) {
    open();
    wheelOn(kFirstPanKnob, 1);
    rig.move({rig.on(kFirstPanKnob).x + 1, rig.on(kFirstPanKnob).y});
    wheelOn(kFirstPanKnob, 1);
    EXPECT_EQ(rig.changes(), (Calls{"PushUndoState", "SetPadPan 0 0.50999999", "SetPadPan 0 0.519999981"}));
}

TEST_F(Wheel, AnotherKnobAPressAKeyOrADropBeginsANewRun) {
    open();
    const auto states = [&] { return std::ranges::count(rig.changes(), "PushUndoState"); };
    wheelOn(kFirstPanKnob, 1);
    EXPECT_EQ(states(), 1);
    wheelOn(kFirstPanKnob + 1, 1);
    EXPECT_EQ(states(), 1);
    wheelOn(kFirstPanKnob, 1);
    EXPECT_EQ(states(), 1);
    rig.click(PageRig::onPadImage(9));
    wheelOn(kFirstPanKnob, 1);
    EXPECT_EQ(states(), 1);
    rig.window.key(kKeyF1);
    wheelOn(kFirstPanKnob, 1);
    EXPECT_EQ(states(), 1);
    const std::vector<std::string> none;
    rig.window.drop(PageRig::onPadImage(9), none);
    wheelOn(kFirstPanKnob, 1);
    EXPECT_EQ(states(), 1);
    wheelOn(kFirstPanKnob, 1);
    EXPECT_EQ(states(), 0);
}

TEST_F(Wheel, AtTheEndOfAKnobNothingIsChanged) {
    pad(0).volume = 2.0f;
    open();
    wheelOn(kFirstVolumeKnob, 1);
    EXPECT_EQ(rig.changes(), Calls{});
}

TEST_F(Wheel, AGrainsKnobTurnsTheOneThatIsSelected) {
    rig.fillPad(2, 3);
    open();
    rig.select(2, 1);
    wheelOn(kVolumeKnob, -1);
    wheelOn(kVolumeKnob, -1);
    EXPECT_EQ(rig.changes(),
              (Calls{"PushUndoState", "SetGrainVolume 2 1 0.980000019", "SetGrainVolume 2 1 0.959999979"}));
}

TEST_F(Wheel, WithoutASelectedGrainItsKnobsMakeNoUndoState) {
    open();
    wheelOn(kVolumeKnob, -1);
    EXPECT_EQ(rig.changes(), Calls{});
}

TEST_F(Wheel, OverAComboItGoesToTheNextItem) {
    open();
    wheelOn(kOutput, -1);
    EXPECT_EQ(rig.changes(), Calls{"SetPadOutput 0 1"});
    wheelOn(kOutput, -1);
    EXPECT_EQ(rig.changes(), Calls{"SetPadOutput 0 2"});
    wheelOn(kOutput, 1);
    EXPECT_EQ(rig.changes(), Calls{"SetPadOutput 0 1"});
    EXPECT_EQ(rig.text(kOutput), "Chan 1");
    EXPECT_FALSE(rig.page->hasFocus(rig.control(kOutput)));
}

TEST_F(Wheel, AComboStopsAtItsFirstAndLastItem) {
    open();
    wheelOn(kSnap, -9);
    EXPECT_EQ(rig.page->scale().snapIndex, 7);
    wheelOn(kOutput, 3);
    EXPECT_EQ(rig.changes(), Calls{});
    EXPECT_EQ(rig.text(kOutput), "Mix Only");
}

TEST_F(Wheel, AListThatIsOpenIsWalkedAndPicksNothing) {
    open();
    rig.click(rig.on(kOutput));
    wheelOn(kOutput, -2);
    EXPECT_EQ(rig.changes(), Calls{});
    rig.window.key(kKeyReturn);
    EXPECT_EQ(rig.changes(), Calls{"SetPadOutput 0 2"});
}

}  // namespace
}  // namespace marnoth::test::wheel_test
