#include <gtest/gtest.h>

#include "editor/PageRig.h"
#include "editor/skin/Palette.h"

/// Grains under the mouse: presses, drags and drops. While nothing is zoomed a beat is 54 pixels wide and
/// snaps to twelfths.
namespace marnoth::test::grain_gestures_test {
namespace {

constexpr std::int64_t kBeat = PageRig::kBeat;
constexpr std::int64_t kTwelfth = kBeat / 12;

using Selected = std::vector<std::pair<int, int>>;

Selected listed(const CEventSelection& selection) {
    Selected list;
    for (const auto& [track, grain] : selection) list.emplace_back(track, grain);
    return list;
}

std::string line(const std::string& name, std::initializer_list<std::int64_t> arguments) {
    std::string text = name;
    for (const std::int64_t argument : arguments) text += " " + std::to_string(argument);
    return text;
}

/// A file of six grains, and four of them on pads 1, 2 and 4.
class GrainGestures : public testing::Test {
protected:
    GrainGestures() {
        rig.addFile("beat.wav", 6);
        for (const int pad : {0, 1, 3}) rig.fillPad(pad, 4);
    }

    void open() { rig.open(); }
    void select(int pad, int beat) { rig.select(pad, beat); }
    void alsoSelect(int pad, int beat) { rig.alsoSelect(pad, beat); }
    Selected selection() const { return listed(rig.page->selection()); }
    Selected binSelection() const { return listed(rig.page->binSelection()); }
    Color pixel(Point at) const { return rig.page->screen().at(at.x, at.y); }

    PageRig rig;
};

TEST_F(GrainGestures, APressSelectsTheGrainShowsItsSourceAndPlaysIt) {
    rig.engine.pads[1].grains[2].source = 5;
    open();
    rig.press(PageRig::onBeat(1, 2));
    EXPECT_EQ(rig.changes(), Calls{"AuditionPad 1 2"});
    EXPECT_EQ(rig.page->currentPad(), 1);
    EXPECT_EQ(selection(), (Selected{{1, 2}}));
    EXPECT_EQ(rig.page->currentBinFile(), 0);
    EXPECT_EQ(binSelection(), (Selected{{0, 5}}));
}

TEST_F(GrainGestures, APressOnAnotherGrainSelectsItAlone) {
    open();
    select(0, 1);
    select(3, 2);
    EXPECT_EQ(selection(), (Selected{{3, 2}}));
}

TEST_F(GrainGestures, ShiftAddsInTheOrderOfSelecting) {
    open();
    select(3, 2);
    alsoSelect(0, 1);
    EXPECT_EQ(selection(), (Selected{{3, 2}, {0, 1}}));
}

TEST_F(GrainGestures, APressOnASelectedGrainKeepsTheGroup) {
    open();
    select(3, 2);
    alsoSelect(0, 1);
    select(3, 2);
    EXPECT_EQ(selection(), (Selected{{3, 2}, {0, 1}}));
}

TEST_F(GrainGestures, AShiftClickOnASelectedGrainKeepsTheSelection) {
    open();
    select(3, 2);
    alsoSelect(0, 1);
    alsoSelect(0, 1);
    EXPECT_EQ(selection(), (Selected{{3, 2}, {0, 1}}));
}

TEST_F(GrainGestures, APressOnAnEmptyPartOfARowSelectsThePadAndNothing) {
    open();
    select(0, 1);
    rig.press(PageRig::inRow(7, 300));
    EXPECT_EQ(rig.changes(), Calls{});
    EXPECT_EQ(rig.page->currentPad(), 7);
    EXPECT_EQ(selection(), Selected{});
}

TEST_F(GrainGestures, WithShiftAPressOnAnEmptyPartKeepsTheSelection) {
    open();
    select(0, 1);
    rig.window.hold(kKeyShift);
    rig.press(PageRig::inRow(7, 300));
    EXPECT_EQ(rig.page->currentPad(), 7);
    EXPECT_EQ(selection(), (Selected{{0, 1}}));
}

TEST_F(GrainGestures, APressOnAPadsNameKeepsTheSelection) {
    open();
    select(0, 1);
    rig.press(PageRig::onName(7));
    EXPECT_EQ(selection(), (Selected{{0, 1}}));
}

TEST_F(GrainGestures, TheRulerBelongsToTheFirstPadWithinARowOfThePlot) {
    open();
    rig.press({200, 352});
    EXPECT_EQ(rig.page->currentPad(), 0);
    rig.release({200, 352});
    select(3, 0);
    rig.press({200, 351});
    EXPECT_EQ(rig.page->currentPad(), 3);
}

TEST_F(GrainGestures, AnOverlappingLaterGrainIsTheOneThatIsHit) {
    rig.engine.pads[0].grains[1].end = 3 * kBeat;
    open();
    rig.press(PageRig::onBeat(0, 2));
    EXPECT_EQ(selection(), (Selected{{0, 2}}));
}

TEST_F(GrainGestures, GrainsOfAPadWithoutALengthCanBeHit) {
    rig.engine.pads[0].loopLength = 0;
    open();
    rig.press(PageRig::onBeat(0, 3));
    EXPECT_EQ(selection(), (Selected{{0, 3}}));
}

TEST_F(GrainGestures, ATailGrainIsHitOnFifteenPixels) {
    rig.engine.pads[0].grains[0] = {0, kBeat, true};
    open();
    rig.click(PageRig::inRow(0, 14));
    EXPECT_EQ(selection(), (Selected{{0, 0}}));
    rig.click(PageRig::inRow(0, 15));
    EXPECT_EQ(selection(), Selected{});
}

TEST_F(GrainGestures, ADragSnapsTheGrainsLeftEdgeNotThePointer) {
    open();
    select(0, 1);
    rig.drag(PageRig::inRow(0, 60), PageRig::inRow(0, 80));
    // Left edge from 54 to 74 pixels: 1.37 beats, 16.4 twelfths.
    EXPECT_EQ(rig.changes(), (Calls{"AuditionPad 0 1", "PushUndoState",
                                    line("MoveGrain", {0, 1, 0, 16 * kTwelfth, 1}), "CommitGrainEdits"}));
    EXPECT_EQ(selection(), Selected{});
}

TEST_F(GrainGestures, AMoveIsFollowedByTheTogglesOfThePadThatGotTheGrains) {
    open();
    rig.drag(PageRig::onBeat(0, 1), PageRig::onBeat(5, 1));
    const Calls calls = rig.calls();
    const auto commit = std::ranges::find(calls, "CommitGrainEdits");
    ASSERT_GE(calls.end() - commit, 3);
    EXPECT_EQ(Calls(commit + 1, commit + 3), (Calls{"GetPadLooping 5", "GetPadSynced 5"}));
    EXPECT_EQ(rig.page->currentPad(), 5);
    EXPECT_EQ(std::ranges::count(calls, "SetRefreshRequest 1"), 0);
}

TEST_F(GrainGestures, WithShiftADragMovesBetweenPadsOnly) {
    open();
    rig.press(PageRig::onBeat(0, 1));
    rig.window.hold(kKeyShift);
    rig.move(PageRig::onBeat(5, 3));
    rig.release(PageRig::onBeat(5, 3));
    EXPECT_EQ(rig.changes(),
              (Calls{"AuditionPad 0 1", "PushUndoState", "MoveGrain 0 1 5 -1 1", "CommitGrainEdits"}));
}

TEST_F(GrainGestures, WithControlADragCopies) {
    open();
    rig.window.hold(kKeyControl);
    rig.drag(PageRig::onBeat(0, 1), PageRig::onBeat(5, 3));
    EXPECT_EQ(rig.changes(), (Calls{"AuditionPad 0 1", "PushUndoState",
                                    line("CopyGrain", {0, 1, 5, 3 * kBeat}), "CommitGrainEdits"}));
}

TEST_F(GrainGestures, ControlIsReadWhenTheButtonIsLetGo) {
    open();
    rig.press(PageRig::onBeat(0, 1));
    rig.move(PageRig::onBeat(5, 3));
    rig.window.hold(kKeyControl);
    rig.release(PageRig::onBeat(5, 3));
    EXPECT_EQ(rig.changes()[2], line("CopyGrain", {0, 1, 5, 3 * kBeat}));
}

TEST_F(GrainGestures, WithShiftAndControlADragCopiesToTheSameTime) {
    open();
    rig.press(PageRig::onBeat(0, 1));
    rig.window.hold(kKeyControl);
    rig.window.hold(kKeyShift);
    rig.move(PageRig::onBeat(5, 3));
    rig.release(PageRig::onBeat(5, 3));
    EXPECT_EQ(rig.changes()[2], "CopyGrain 0 1 5 -1");
}

TEST_F(GrainGestures, ADraggedGrainLeavesItsPlaceUnlessItIsCopied) {
    open();
    rig.press(PageRig::onBeat(0, 1));
    rig.move(PageRig::onBeat(5, 3));
    EXPECT_EQ(pixel(PageRig::onBeat(0, 1)), kPalette[1]);
    rig.window.hold(kKeyControl);
    rig.move(PageRig::onBeat(5, 3));
    EXPECT_EQ(pixel(PageRig::onBeat(0, 1)), kPalette[7]);
}

TEST_F(GrainGestures, ANearlyStillMouseIsAClick) {
    open();
    rig.press(PageRig::onBeat(0, 1));
    rig.move(PageRig::inRow(5, 300));
    rig.move({PageRig::onBeat(0, 1).x + 4, PageRig::onBeat(0, 1).y - 4});
    rig.calls();
    rig.release({PageRig::onBeat(0, 1).x + 4, PageRig::onBeat(0, 1).y - 4});
    const Calls calls = rig.calls();
    EXPECT_EQ(std::ranges::count(calls, "PushUndoState"), 0);
    EXPECT_EQ(std::ranges::count(calls, "GetPadSynced 0"), 0);
    EXPECT_EQ(selection(), (Selected{{0, 1}}));
}

TEST_F(GrainGestures, FivePixelsOnOneAxisAreADrag) {
    open();
    rig.drag(PageRig::onBeat(0, 1), {PageRig::onBeat(0, 1).x - 5, PageRig::onBeat(0, 1).y});
    // 49 pixels: 10.9 twelfths.
    EXPECT_EQ(rig.changes()[2], line("MoveGrain", {0, 1, 0, 11 * kTwelfth, 1}));
}

TEST_F(GrainGestures, AReleaseOutsideTheViewEndsTheDragWithoutAChange) {
    open();
    rig.press(PageRig::onBeat(0, 1));
    rig.move({50, 450});
    EXPECT_EQ(rig.window.confinement(), kPadPlot);
    rig.changes();
    rig.release({50, 450});
    EXPECT_EQ(rig.changes(), Calls{});
    EXPECT_EQ(rig.window.confinement(), std::nullopt);
    rig.move(PageRig::onBeat(5, 3));
    rig.release(PageRig::onBeat(5, 3));
    EXPECT_EQ(rig.changes(), Calls{});
}

TEST_F(GrainGestures, AGroupFoldsOntoTheFirstPad) {
    rig.fillPad(2, 4);
    open();
    select(3, 1);
    for (const int pad : {2, 1, 0}) alsoSelect(pad, 1);
    rig.drag(PageRig::onBeat(3, 1), PageRig::onBeat(0, 1));
    EXPECT_EQ(rig.changes(),
              (Calls{"AuditionPad 3 1", "PushUndoState", line("MoveGrain", {3, 1, 0, kBeat, 1}),
                     line("MoveGrain", {2, 1, 0, kBeat, 1}), line("MoveGrain", {1, 1, 0, kBeat, 1}),
                     line("MoveGrain", {0, 1, 0, kBeat, 1}), "CommitGrainEdits"}));
}

TEST_F(GrainGestures, AGroupFoldsOntoTheLastPad) {
    open();
    select(0, 1);
    alsoSelect(3, 1);
    rig.drag(PageRig::onBeat(0, 1), PageRig::onBeat(14, 1));
    EXPECT_EQ(rig.changes()[2], line("MoveGrain", {0, 1, 14, kBeat, 1}));
    rig.engine.take();
    select(0, 1);
    alsoSelect(3, 1);
    rig.drag(PageRig::onBeat(3, 1), PageRig::onBeat(15, 1));
    const Calls changes = rig.changes();
    EXPECT_EQ(changes[2], line("MoveGrain", {0, 1, 12, kBeat, 1}));
    EXPECT_EQ(changes[3], line("MoveGrain", {3, 1, 15, kBeat, 1}));
}

TEST_F(GrainGestures, OthersOfAGroupMayBeMovedBeforeTheStart) {
    open();
    select(0, 0);
    alsoSelect(0, 2);
    rig.drag(PageRig::onBeat(0, 2), PageRig::onBeat(0, 1));
    const Calls changes = rig.changes();
    EXPECT_EQ(changes[2], line("MoveGrain", {0, 0, 0, -kBeat, 1}));
    EXPECT_EQ(changes[3], line("MoveGrain", {0, 2, 0, kBeat, 1}));
}

TEST_F(GrainGestures, WithoutSnapAGrainGoesToThePixel) {
    open();
    dynamic_cast<CFxComboBox&>(rig.control(kSnap)).choose("None");
    rig.drag(PageRig::inRow(0, 60), PageRig::inRow(0, 80));
    // 74 / 54 beats, rounded to a tick.
    EXPECT_EQ(rig.changes()[2], line("MoveGrain", {0, 1, 0, 86216249, 1}));
}

// The mark of a loop's length: four beats, so 216 pixels from the plot's left, and taken hold of 5 pixels
// right of it.

TEST_F(GrainGestures, ADraggedMarkSetsTheLoopLength) {
    open();
    rig.drag(PageRig::inRow(0, 220), PageRig::inRow(0, 250));
    // 246 pixels: 54.7 twelfths.
    EXPECT_EQ(rig.changes(), (Calls{"PushUndoState", line("SetLoopLength", {1, 0, 55 * kTwelfth})}));
    EXPECT_EQ(rig.page->currentPad(), 0);
}

TEST_F(GrainGestures, TheMarkIsSevenPixelsWideToTheHand) {
    open();
    for (const int x : {218, 224}) {
        rig.click(PageRig::inRow(3, x));
        EXPECT_EQ(rig.changes()[0], "PushUndoState") << x;
    }
    for (const int x : {217, 225}) {
        rig.click(PageRig::inRow(3, x));
        EXPECT_EQ(rig.changes(), Calls{}) << x;
    }
}

TEST_F(GrainGestures, TheMarkGoesBeforeAGrainUnderTheSamePoint) {
    rig.engine.pads[3].loopLength = 2 * kBeat;
    open();
    rig.press(PageRig::inRow(3, 113));
    EXPECT_EQ(rig.changes(), Calls{});
    EXPECT_EQ(selection(), Selected{});
    EXPECT_EQ(rig.page->currentPad(), 3);
}

TEST_F(GrainGestures, AnEmptyPadHasNoMarkToDrag) {
    rig.engine.pads[7].loopLength = 4 * kBeat;
    open();
    rig.drag(PageRig::inRow(7, 221), PageRig::inRow(7, 250));
    EXPECT_EQ(rig.changes(), Calls{});
}

TEST_F(GrainGestures, TheGrainUnderThePointerLightsUp) {
    open();
    rig.move(PageRig::onBeat(0, 1));
    EXPECT_EQ(pixel(PageRig::onBeat(0, 1)), kPalette[8]);
    rig.move(PageRig::onBeat(3, 2));
    EXPECT_EQ(pixel(PageRig::onBeat(0, 1)), kPalette[6]);
    EXPECT_EQ(pixel(PageRig::onBeat(3, 2)), kPalette[8]);
    rig.move(PageRig::inRow(9, 400));
    EXPECT_EQ(pixel(PageRig::onBeat(3, 2)), kPalette[6]);
}

// Out of the strip.

class StripGestures : public GrainGestures {
protected:
    void open() {
        rig.addFile("other.wav", 3);
        rig.engine.pads[3].grains[1].file = 1;
        rig.engine.pads[3].grains[1].source = 2;
        rig.open();
        rig.click(PageRig::onBinRow(0));
        rig.calls();
    }
};

TEST_F(StripGestures, APressOnAGrainOfTheStripPlaysAndSelectsIt) {
    open();
    rig.press(PageRig::onStripGrain(2));
    EXPECT_EQ(rig.changes(), Calls{"AuditionBinFile 0 2"});
    EXPECT_EQ(binSelection(), (Selected{{0, 2}}));
}

TEST_F(StripGestures, DroppedOnARowTheGroupKeepsItsShapeFromTheDropPoint) {
    open();
    rig.click(PageRig::onStripGrain(4));
    rig.window.hold(kKeyShift);
    rig.press(PageRig::onStripGrain(2));
    rig.window.let(kKeyShift);
    rig.move(PageRig::inRow(8, 100));
    EXPECT_EQ(rig.window.cursor(), PageCursor::dragCopy);
    rig.changes();
    rig.release(PageRig::inRow(8, 100));
    // 100 pixels: 22.2 twelfths, for the earlier of the two.
    EXPECT_EQ(rig.changes(), (Calls{"PushUndoState", line("AddGrain", {0, 4, 8, 22 * kTwelfth + 2 * kBeat}),
                                    line("AddGrain", {0, 2, 8, 22 * kTwelfth}), "SetRefreshRequest 1"}));
    EXPECT_EQ(rig.page->currentPad(), 8);
    rig.move(PageRig::inRow(8, 100));
    EXPECT_EQ(rig.window.cursor(), PageCursor::arrow);
}

TEST_F(StripGestures, DroppedOnAPadsNameGrainsKeepThePlaceInTheirFile) {
    open();
    rig.drag(PageRig::onStripGrain(2), PageRig::onName(8));
    EXPECT_EQ(rig.changes(), (Calls{"AuditionBinFile 0 2", "PushUndoState",
                                    line("AddGrain", {0, 2, 8, 2 * kBeat}), "SetRefreshRequest 1"}));
}

TEST_F(StripGestures, OverAGrainTheStripShowsWhatWouldBeReplaced) {
    open();
    rig.press(PageRig::onStripGrain(2));
    rig.move(PageRig::onBeat(3, 1));
    EXPECT_EQ(rig.changes(), (Calls{"AuditionBinFile 0 2", "AuditionPad 3 1"}));
    EXPECT_EQ(rig.page->currentBinFile(), 1);
    EXPECT_EQ(binSelection(), (Selected{{1, 2}}));
    rig.move({PageRig::onBeat(3, 1).x + 3, PageRig::onBeat(3, 1).y});
    EXPECT_EQ(rig.changes(), Calls{}) << "the same grain isn't played again";
}

TEST_F(StripGestures, DroppedOnAGrainItReplacesIt) {
    open();
    rig.press(PageRig::onStripGrain(2));
    rig.move(PageRig::onBeat(0, 0));
    rig.move(PageRig::onBeat(3, 1));
    rig.changes();
    rig.release(PageRig::onBeat(3, 1));
    EXPECT_EQ(rig.changes(), (Calls{"PushUndoState", "ReplaceGrain 3 1 0 2", "AuditionPad 3 1"}));
    EXPECT_EQ(selection(), (Selected{{3, 1}}));
    EXPECT_EQ(rig.page->currentBinFile(), 0);
    EXPECT_EQ(binSelection(), (Selected{{0, 2}}));
    EXPECT_EQ(rig.page->currentPad(), 3);
}

TEST_F(StripGestures, DroppedElsewhereItChangesNothingAndTheStripComesBack) {
    open();
    rig.press(PageRig::onStripGrain(2));
    rig.move(PageRig::onBeat(3, 1));
    rig.changes();
    rig.release({300, 100});
    EXPECT_EQ(rig.changes(), Calls{});
    EXPECT_EQ(rig.page->currentBinFile(), 0);
    EXPECT_EQ(binSelection(), (Selected{{0, 2}}));
}

TEST_F(GrainGestures, ADoubleClickOnAPadsNameSelectsAllItsGrains) {
    open();
    rig.window.doubleClick(PageRig::onName(3));
    EXPECT_EQ(selection(), (Selected{{3, 0}, {3, 1}, {3, 2}, {3, 3}}));
    EXPECT_EQ(rig.page->currentPad(), 3);
}

TEST_F(GrainGestures, ADoubleClickOnAPadImagePlaysAndStopsItTwice) {
    open();
    rig.window.doubleClick(PageRig::onPadImage(5));
    EXPECT_EQ(rig.changes(), (Calls{"AuditionPad 5 -1", "StopPad 5", "AuditionPad 5 -1", "StopPad 5"}));
}

TEST_F(GrainGestures, AReleaseWithoutAPressDoesNothing) {
    open();
    rig.release(PageRig::onPadImage(5));
    EXPECT_EQ(rig.changes(), Calls{});
    EXPECT_EQ(rig.page->currentPad(), 0);
}

TEST_F(GrainGestures, WhatTakesTheMouseAwayEndsADragWithoutEffect) {
    open();
    rig.press(PageRig::onBeat(0, 1));
    rig.move(PageRig::onBeat(5, 3));
    rig.changes();
    rig.page->captureLost();
    rig.release(PageRig::onBeat(5, 3));
    EXPECT_EQ(rig.changes(), Calls{});
    EXPECT_EQ(selection(), (Selected{{0, 1}}));
}

TEST_F(GrainGestures, APadThatIsHeldStopsWhenTheMouseIsTakenAway) {
    open();
    rig.press(PageRig::onPadImage(5));
    rig.changes();
    rig.page->captureLost();
    EXPECT_EQ(rig.changes(), Calls{"StopPad 5"});
    rig.page->captureLost();
    EXPECT_EQ(rig.changes(), Calls{});
}

TEST_F(GrainGestures, APageThatClosesWhileAPadIsHeldStopsIt) {
    open();
    rig.press(PageRig::onPadImage(5));
    rig.changes();
    rig.window.setPage(nullptr);
    rig.page.reset();
    EXPECT_EQ(rig.changes(), Calls{"StopPad 5"});
    EXPECT_FALSE(rig.window.hasCapture());
    EXPECT_EQ(rig.window.timerPeriod(), 0);
}

TEST_F(GrainGestures, AGrainThatIsGoneByTheReleaseEndsTheGesture) {
    open();
    rig.press(PageRig::onBeat(0, 3));
    rig.move(PageRig::onBeat(5, 3));
    rig.engine.pads[0].grains.clear();
    rig.move(PageRig::onBeat(6, 3));
    rig.changes();
    rig.release(PageRig::onBeat(6, 3));
    EXPECT_EQ(rig.changes(), Calls{});
    rig.move(PageRig::onBeat(7, 3));
    rig.release(PageRig::onBeat(7, 3));
    EXPECT_EQ(rig.changes(), Calls{}) << "the drag is over";
}

}  // namespace
}  // namespace marnoth::test::grain_gestures_test
