#include <gtest/gtest.h>

#include "editor/PageRig.h"

/// Keys on grains, and what of the Pad Editor is in view. While nothing is zoomed a beat is 54 pixels wide,
/// and the plot shows 446 pixels.
namespace marnoth::test::grain_keys_test {
namespace {

constexpr std::int64_t kBeat = PageRig::kBeat;

class GrainKeys : public testing::Test {
protected:
    void open() {
        rig.addFile("beat.wav", 20);
        rig.open();
    }
    void select(int pad, int beat) { rig.select(pad, beat); }
    void alsoSelect(int pad, int beat) { rig.alsoSelect(pad, beat); }
    /// With the keyboard where the last release left it.
    void press(int key) { rig.window.key(key); }
    void pressWith(int held, int key) {
        rig.window.hold(held);
        press(key);
        rig.window.let(held);
    }
    std::pair<int, int> first() const {
        return {rig.page->selection().first().track, rig.page->selection().first().grain};
    }
    int position() const { return rig.page->scale().horizontal; }

    PageRig rig;
};

using Grain = std::pair<int, int>;

TEST_F(GrainKeys, LeftAndRightWalkThePadToItsEnds) {
    rig.fillPad(2, 3);
    open();
    select(2, 1);
    press(kKeyRight);
    EXPECT_EQ(rig.changes(), Calls{"AuditionPad 2 2"});
    press(kKeyRight);
    EXPECT_EQ(first(), Grain(2, 2));
    press(kKeyLeft);
    press(kKeyLeft);
    press(kKeyLeft);
    EXPECT_EQ(first(), Grain(2, 0));
    EXPECT_EQ(rig.page->selection().size(), 1);
}

TEST_F(GrainKeys, UpAndDownGoToTheFirstGrainOfTheNearestPadThatHasAny) {
    for (const int pad : {1, 4, 9}) rig.fillPad(pad, 3);
    open();
    select(4, 2);
    press(kKeyDown);
    EXPECT_EQ(first(), Grain(9, 0));
    press(kKeyDown);
    EXPECT_EQ(first(), Grain(9, 0));
    press(kKeyUp);
    press(kKeyUp);
    EXPECT_EQ(first(), Grain(1, 0));
    press(kKeyUp);
    EXPECT_EQ(first(), Grain(1, 0));
}

TEST_F(GrainKeys, AnArrowMakesTheGrainsSourceCurrent) {
    rig.fillPad(2, 3);
    open();
    select(2, 0);
    press(kKeyRight);
    EXPECT_EQ(rig.page->currentBinFile(), 0);
    EXPECT_EQ(rig.page->binSelection().first(), (EventSelectionInfo{0, 1}));
}

TEST_F(GrainKeys, AnArrowGoesOnFromTheFirstOfAGroup) {
    rig.fillPad(2, 4);
    open();
    select(2, 0);
    alsoSelect(2, 3);
    press(kKeyRight);
    EXPECT_EQ(first(), Grain(2, 1));
    EXPECT_EQ(rig.page->selection().size(), 1);
}

TEST_F(GrainKeys, ArrowsDoNothingWithNothingSelected) {
    rig.fillPad(2, 4);
    open();
    select(7, 3);
    for (const int key : {kKeyLeft, kKeyUp, kKeyRight, kKeyDown}) press(key);
    EXPECT_EQ(rig.calls(), Calls{});
}

TEST_F(GrainKeys, ArrowsKeepTheGrainInView) {
    rig.fillPad(0, 20);
    rig.fillPad(3, 1);
    open();
    select(0, 7);
    press(kKeyRight);
    EXPECT_EQ(position(), 0) << "grain 9 begins at 432 of 446 pixels";
    press(kKeyRight);
    EXPECT_EQ(position(), 9 * 54 - 12) << "that is more than a page on";
    press(kKeyLeft);
    EXPECT_EQ(position(), 474) << "the end of grain 9 is still seen";
    press(kKeyLeft);
    EXPECT_EQ(position(), 474 - 446 + 12) << "that is less than grain 8's begin";
    press(kKeyLeft);
    press(kKeyRight);
    press(kKeyDown);
    EXPECT_EQ(first(), Grain(3, 0));
    EXPECT_EQ(position(), 40) << "its right edge lies at 54, so at 14 in the plot";
    rig.drag({150, 541}, {300, 541});
    ASSERT_GT(position(), 100);
    press(kKeyDown);
    EXPECT_EQ(position(), 0) << "the nearest to 12 pixels before its begin";
}

TEST_F(GrainKeys, AnArrowToARowThatWasNeverSeenEndsThere) {
    rig.fillPad(0, 2);
    open();
    for (int i = 0; i < 4; ++i) rig.click(rig.on(kRowsHigher));
    rig.engine.pads[15].grains.push_back({0, kBeat});
    rig.click({137 + 27, 361 + 15});
    rig.calls();
    press(kKeyDown);
    EXPECT_EQ(first(), Grain(15, 0));
    EXPECT_EQ(rig.changes(), Calls{"AuditionPad 15 0"});
}

TEST_F(GrainKeys, DeleteMarksTheGrainsAndCommits) {
    rig.fillPad(2, 4);
    open();
    select(2, 3);
    alsoSelect(2, 1);
    press(kKeyDelete);
    EXPECT_EQ(rig.changes(),
              (Calls{"PushUndoState", "DeleteGrain 2 3 1", "DeleteGrain 2 1 1", "CommitGrainEdits"}));
    EXPECT_TRUE(rig.page->selection().isEmpty());
}

TEST_F(GrainKeys, DeleteWithNothingSelectedPushesAnUndoStateAllTheSame) {
    open();
    select(2, 3);
    press(kKeyDelete);
    EXPECT_EQ(rig.changes(), (Calls{"PushUndoState", "CommitGrainEdits"}));
}

TEST_F(GrainKeys, ZWithControlUndoesAndWithShiftTooRedoes) {
    rig.fillPad(2, 4);
    open();
    select(2, 3);
    pressWith(kKeyControl, kKeyZ);
    EXPECT_EQ(rig.changes(), (Calls{"Undo", "SetRefreshRequest 1"}));
    EXPECT_TRUE(rig.page->selection().isEmpty());
    EXPECT_TRUE(rig.page->binSelection().isEmpty());
    rig.window.hold(kKeyShift);
    pressWith(kKeyControl, kKeyZ);
    EXPECT_EQ(rig.changes(), (Calls{"Redo", "SetRefreshRequest 1"}));
    rig.window.let(kKeyShift);
    press(kKeyZ);
    EXPECT_EQ(rig.changes(), Calls{});
}

TEST_F(GrainKeys, F11IsAsGoodAsZ) {
    open();
    select(2, 3);
    pressWith(kKeyControl, kKeyF11);
    EXPECT_EQ(rig.changes(), (Calls{"Undo", "SetRefreshRequest 1"}));
    press(kKeyF11);
    EXPECT_EQ(rig.changes(), Calls{});
}

TEST_F(GrainKeys, DeleteAndUndoDoNothingWhileSomethingIsDragged) {
    rig.fillPad(2, 4);
    open();
    select(2, 1);
    const auto tryKeys = [&](const char* what) {
        rig.changes();
        press(kKeyDelete);
        pressWith(kKeyControl, kKeyZ);
        EXPECT_EQ(rig.changes(), Calls{}) << what;
        rig.release({300, 100});
    };
    rig.press(PageRig::onBeat(2, 1));
    tryKeys("a grain");
    rig.press(PageRig::onBinRow(0));
    tryKeys("a file");
    rig.press(PageRig::onStripGrain(2));
    tryKeys("a grain of the strip");
    rig.click({16, 260});
    rig.press({300, 315});
    tryKeys("the key map");
    press(kKeyDelete);
    EXPECT_EQ(rig.changes()[0], "PushUndoState") << "all drags are over";
}

TEST_F(GrainKeys, PlusAndMinusTransposeTheGrainAndPlayIt) {
    rig.fillPad(2, 4);
    rig.engine.pads[2].grains[1].transpose = 3;
    open();
    select(2, 1);
    press(kKeyAdd);
    EXPECT_EQ(rig.changes(), (Calls{"SetGrainTranspose 2 1 4", "AuditionPad 2 1"}));
    EXPECT_EQ(rig.text(kGrainTranspose), "4");
    press(kKeySubtract);
    press(kKeySubtract);
    EXPECT_EQ(rig.engine.pads[2].grains[1].transpose, 2);
}

TEST_F(GrainKeys, TransposingStopsAtTwoOctaves) {
    rig.fillPad(2, 4);
    rig.engine.pads[2].grains[1].transpose = 24;
    open();
    select(2, 1);
    press(kKeyAdd);
    EXPECT_EQ(rig.changes(), (Calls{"SetGrainTranspose 2 1 24", "AuditionPad 2 1"}));
}

TEST_F(GrainKeys, AGroupIsNotTransposed) {
    rig.fillPad(2, 4);
    open();
    select(2, 1);
    alsoSelect(2, 3);
    press(kKeyAdd);
    EXPECT_EQ(rig.changes(), Calls{"AuditionPad 2 1"});
    EXPECT_EQ(rig.text(kGrainTranspose), "0");
}

TEST_F(GrainKeys, F1ShowsTheHelp) {
    open();
    select(2, 3);
    press(kKeyF1);
    EXPECT_EQ(rig.window.helpShown(), 1);
}

TEST_F(GrainKeys, OtherKeysAndCharactersAreSwallowed) {
    open();
    select(2, 3);
    press(kKeySpace);
    rig.window.type("m s");
    EXPECT_EQ(rig.calls(), Calls{});
    EXPECT_EQ(rig.state(kBinPlay), 0);
}

// Zoom and scrolling.

TEST_F(GrainKeys, TheZoomGoesByHalvesAndThirdsToItsBounds) {
    open();
    for (const double expected : {81.0, 121.5, 182.25, 200.0, 200.0}) {
        rig.click(rig.on(kZoomIn));
        EXPECT_DOUBLE_EQ(rig.page->scale().pixelsPerBeat, expected);
    }
    for (int i = 0; i < 8; ++i) rig.click(rig.on(kZoomOut));
    EXPECT_DOUBLE_EQ(rig.page->scale().pixelsPerBeat, 20.0);
}

TEST_F(GrainKeys, RowsGrowByFivePixelsToThirty) {
    open();
    for (const int expected : {15, 20, 25, 30, 30}) {
        rig.click(rig.on(kRowsHigher));
        EXPECT_EQ(rig.page->scale().rowHeight, expected);
    }
    for (int i = 0; i < 5; ++i) rig.click(rig.on(kRowsLower));
    EXPECT_EQ(rig.page->scale().rowHeight, 10);
}

TEST_F(GrainKeys, ADoubleClickOnAZoomCountsTwice) {
    open();
    rig.window.doubleClick(rig.on(kZoomIn));
    EXPECT_DOUBLE_EQ(rig.page->scale().pixelsPerBeat, 121.5);
}

TEST_F(GrainKeys, AZoomKeepsThePositionUntilThePaintHoldsItToTheContent) {
    rig.fillPad(0, 20);
    open();
    // 21 beats of 54 pixels: 1134, of which 446 are seen.
    rig.drag({150, 541}, {553, 541});
    EXPECT_EQ(position(), 1134 - 446);
    rig.click(rig.on(kZoomIn));
    EXPECT_EQ(position(), 1134 - 446);
    rig.click(rig.on(kZoomOut));
    rig.click(rig.on(kZoomOut));
    EXPECT_EQ(position(), 21 * 36 - 446);
}

TEST_F(GrainKeys, AThumbIsDraggedInTheTracksScale) {
    rig.fillPad(0, 20);
    open();
    rig.press({150, 541});
    rig.move({250, 541});
    // The track is 453 pixels long for 1134.
    EXPECT_EQ(position(), 100 * 1134 / 453);
    rig.release({251, 541});
    EXPECT_EQ(position(), 101 * 1134 / 453);
    rig.move({300, 541});
    EXPECT_EQ(position(), 252);
}

TEST_F(GrainKeys, APressBesideTheThumbDoesNothing) {
    rig.fillPad(0, 20);
    open();
    // The thumb ends at 100 + 453 * 446 / 1134 = 278.
    rig.drag({278, 541}, {400, 541});
    EXPECT_EQ(position(), 0);
}

TEST_F(GrainKeys, AnEmptyProjectHasNothingToScroll) {
    open();
    rig.drag({150, 541}, {300, 541});
    EXPECT_EQ(position(), 0);
}

TEST_F(GrainKeys, HighRowsAreScrolledVertically) {
    open();
    for (int i = 0; i < 4; ++i) rig.click(rig.on(kRowsHigher));
    // 480 pixels in a track of 154: the thumb is 51 long.
    rig.drag({589, 360}, {589, 410});
    EXPECT_EQ(rig.page->scale().vertical, 50 * 480 / 154);
    rig.press({300, 361});
    EXPECT_EQ(rig.page->currentPad(), 155 / 30);
}

// Rows that are thirty pixels high, of which not all are in view.

TEST_F(GrainKeys, RowsOutOfViewFetchNoList) {
    open();
    for (int i = 0; i < 4; ++i) rig.click(rig.on(kRowsHigher));
    const auto fetched = [&] {
        rig.engine.SetRefreshRequest(1);
        rig.calls();
        rig.window.tick();
        std::vector<std::string> lists = rig.calls();
        std::erase_if(lists, [](const std::string& call) { return !call.starts_with("GetPadGrainList"); });
        return lists;
    };
    // The view is 167 pixels high below the ruler.
    Calls expected;
    for (int pad = 0; pad < 6; ++pad) expected.push_back(callText("GetPadGrainList", pad));
    EXPECT_EQ(fetched(), expected);
    rig.window.wheel(PageRig::onName(0), WheelAxis::vertical, -10);
    ASSERT_EQ(rig.page->scale().vertical, 300);
    expected.clear();
    for (int pad = 9; pad < 16; ++pad) expected.push_back(callText("GetPadGrainList", pad));
    EXPECT_EQ(fetched(), expected);
}

// What a host may have of the keys.

TEST_F(GrainKeys, ThePageSaysWhichKeysItActedOn) {
    rig.fillPad(2, 3);
    open();
    rig.click(PageRig::inRow(9, 300));
    for (const int key : {+kKeySpace, +kKeyReturn, +kKeyLeft, +kKeyAdd, +kKeyZ, int{'Q'}})
        EXPECT_FALSE(rig.window.key(key)) << key << " with nothing selected";
    EXPECT_TRUE(rig.window.key(kKeyF1));
    select(2, 1);
    for (const int key : {+kKeyLeft, +kKeyDown, +kKeyAdd, +kKeySubtract})
        EXPECT_TRUE(rig.window.key(key)) << key;
    rig.window.hold(kKeyControl);
    EXPECT_TRUE(rig.window.key(kKeyZ));
    EXPECT_FALSE(rig.window.key('Q'));
}

TEST_F(GrainKeys, DuringADragKeysThatAreRefusedAreNotActedOn) {
    rig.fillPad(2, 3);
    open();
    select(2, 1);
    rig.press(PageRig::onBeat(2, 1));
    EXPECT_FALSE(rig.window.key(kKeyDelete));
    rig.release(PageRig::onBeat(2, 1));
    EXPECT_TRUE(rig.window.key(kKeyDelete));
}

TEST_F(GrainKeys, AnEditTakesWhateverCanBeTypedAndLeavesTheRest) {
    open();
    rig.page->focusControl(rig.control(kLowKey));
    for (const int key :
         {+kKeySpace, int{'Q'}, int{'7'}, +kKeyAdd, 186, 0, +kKeyLeft, +kKeyBackspace, +kKeyDelete})
        EXPECT_TRUE(rig.window.key(key)) << key;
    EXPECT_FALSE(rig.window.key(kKeyF1));
    EXPECT_FALSE(rig.window.key(kKeyEscape));
    rig.window.hold(kKeyControl);
    EXPECT_TRUE(rig.window.key(kKeyA));
    EXPECT_FALSE(rig.window.key('Q'));
}

TEST_F(GrainKeys, WithoutTheKeyboardThePageActsOnNone) {
    open();
    rig.page->focusLost();
    EXPECT_FALSE(rig.window.key(kKeyF1));
    EXPECT_FALSE(rig.window.key(kKeyDelete));
}

}  // namespace
}  // namespace marnoth::test::grain_keys_test
