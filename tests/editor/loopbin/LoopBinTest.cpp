#include <gtest/gtest.h>

#include <algorithm>

#include "editor/PageRig.h"
#include "editor/skin/Palette.h"
#include "editor/skin/Skin.h"

/// The list of audio files with its buttons, and files that are dragged out of it.
namespace marnoth::test::loop_bin_test {
namespace {

constexpr Point kNowhere{20, 548};  ///< ground without a control on it
constexpr Color kText{206, 255, 202};
constexpr Color kGround{37, 43, 52};

const std::string kAskDelete =
    "? message \"Any grains sourced from this file will be deleted from the Pad Editor.  OK to proceed?\" "
    "-> ";

/// Characters are bars of five pixels in the text's colour and one of its ground, twelve high.
class BarFonts final : public FontSource {
public:
    std::unique_ptr<Font> open(std::string_view, int, std::string&) override {
        return std::make_unique<BarFont>();
    }

private:
    class BarFont final : public Font {
    public:
        int lineHeight() const override { return 12; }
        const Glyph& glyph(char32_t) override { return bar_; }

    private:
        Glyph bar_{0, 0, 5, 12, 6, std::vector<unsigned char>(60, 255)};
    };
};

/// Three files, and a grain on the first pad that is selected at will.
class LoopBin : public testing::Test {
protected:
    LoopBin() {
        for (const char* const name : {"one.wav", "two.wav", "three.wav"}) rig.addFile(name, 2);
        rig.fillPad(0, 2);
    }
    void open() { rig.open(); }
    void openWith(int file) {
        rig.open();
        choose(file);
    }
    void choose(int file) {
        rig.click(PageRig::onBinRow(file));
        ASSERT_EQ(rig.page->currentBinFile(), file);
        rig.calls();
    }
    void click(int id, const char* answer = nullptr) {
        if (answer) rig.window.answer(answer);
        rig.click(rig.on(id));
    }
    /// Selects a grain of the first pad and with it its source.
    void selectGrain() {
        rig.click(PageRig::onBeat(0, 1));
        ASSERT_EQ(rig.page->selection().size(), 1);
        rig.calls();
    }
    bool nothingIsSelected() const {
        return rig.page->selection().isEmpty() && rig.page->binSelection().isEmpty();
    }
    Color shown(int x, int y) const { return rig.window.screen().at(x, y); }
    /// How many characters a row of the list shows in the colours, from its left end on.
    int barsIn(int row, Color text, Color ground) const {
        int bars = 0;
        while (shown(18 + 6 * bars, 75 + 15 * row) == text && shown(23 + 6 * bars, 75 + 15 * row) == ground)
            ++bars;
        return bars;
    }

    PageRig rig;
};

TEST_F(LoopBin, NamesAreDrawnWithoutTheirLastFourCharactersWhateverTheyAre) {
    rig.engine.files.clear();
    for (const char* const name : {"drums.wav", "break.aiff", "a.wav", ".wav", "abc", ""})
        rig.addFile(name, 1);
    BarFonts fonts;
    rig.open(fonts);
    const int lengths[] = {5, 6, 1, 0, 0, 0};
    for (int row = 0; row < 6; ++row) EXPECT_EQ(barsIn(row, kText, kGround), lengths[row]) << row;
}

TEST_F(LoopBin, TheCurrentFilesNameIsDarkOnLight) {
    BarFonts fonts;
    rig.open(fonts);
    rig.click(PageRig::onBinRow(1));
    EXPECT_EQ(barsIn(0, kText, kGround), 3);
    EXPECT_EQ(barsIn(1, Color{}, kText), 3);
    EXPECT_EQ(barsIn(2, kText, kGround), 5);
    // Rows are 15 high, their text 12: from 84 to 96.
    EXPECT_EQ(shown(18, 83), kGround);
    EXPECT_EQ(shown(18, 84), Color{});
    EXPECT_EQ(shown(18, 95), Color{});
    EXPECT_EQ(shown(18, 96), kGround);
    EXPECT_EQ(shown(17, 84), kGround);
}

TEST_F(LoopBin, NamesEndAtTheListsEdge) {
    rig.engine.files[0].name = std::string(40, 'x');
    BarFonts fonts;
    rig.open(fonts);
    EXPECT_EQ(shown(114, 75), kText);  // 16 characters of 6 from 18 on
    for (int x = 119; x < 124; ++x) EXPECT_EQ(shown(x, 75), skinBitmap(201).at(x, 75)) << x;
}

TEST_F(LoopBin, EachPaintAsksForTheCountAndTheNames) {
    open();
    rig.press(PageRig::onBinRow(1));
    const Calls calls = rig.calls();
    const auto count = std::find(calls.rbegin(), calls.rend(), "GetBinFileCount").base() - 1;
    ASSERT_GE(calls.end() - count, 4);
    EXPECT_EQ(Calls(count, count + 4),
              (Calls{"GetBinFileCount", "GetBinFileName 0 0", "GetBinFileName 1 0", "GetBinFileName 2 0"}));
}

TEST_F(LoopBin, ARowThatIsPressedBecomesCurrentAndEndsTheStripsSelection) {
    open();
    selectGrain();
    ASSERT_EQ(rig.page->binSelection().size(), 1);
    rig.press({14, 69 + 2 * 15});
    EXPECT_EQ(rig.page->currentBinFile(), 2);
    EXPECT_TRUE(rig.page->binSelection().isEmpty());
    EXPECT_EQ(rig.page->selection().size(), 1);
    rig.release({14, 69 + 2 * 15});
    rig.press({118, 69 + 2 * 15 - 1});
    EXPECT_EQ(rig.page->currentBinFile(), 1);
    EXPECT_EQ(rig.changes(), Calls{});
}

TEST_F(LoopBin, APressWithPlayDownPlaysThePressedFileAtOnce) {
    openWith(0);
    click(kBinPlay);
    rig.calls();
    rig.press(PageRig::onBinRow(1));
    EXPECT_EQ(rig.changes(), (Calls{"StopBinAudition -1", "AuditionBinFile 1 -1"}));
}

TEST_F(LoopBin, APressBelowTheLastRowTakesNothing) {
    openWith(1);
    rig.press(PageRig::onBinRow(3));
    EXPECT_EQ(rig.page->currentBinFile(), 1);
    // What ends there is a plain press: on a pad's image it stops that pad.
    rig.release(PageRig::onPadImage(4));
    EXPECT_EQ(rig.changes(), Calls{"StopPad 4"});
}

TEST_F(LoopBin, TheScrolledListIsPressedWhereItIsDrawn) {
    rig.engine.files.clear();
    for (int file = 0; file < 40; ++file) rig.addFile("loop.wav", 1);
    BarFonts fonts;
    rig.open(fonts);
    // 600 pixels of rows in a track of 149: 20 pixels of the thumb are 80 of the list.
    rig.drag({128, 75}, {128, 95});
    EXPECT_EQ(rig.page->binPosition(), (Point{0, 80}));
    rig.press({40, 69});
    EXPECT_EQ(rig.page->currentBinFile(), 5);  // 80 / 15
    // Its text is from 64 to 76, that of the next from 79 on; the list begins at 69.
    EXPECT_EQ(shown(18, 68), skinBitmap(201).at(18, 68));
    EXPECT_EQ(shown(18, 69), Color{});
    EXPECT_EQ(shown(18, 75), Color{});
    EXPECT_EQ(shown(18, 76), kGround);
    EXPECT_EQ(shown(18, 78), kGround);
    EXPECT_EQ(shown(18, 79), kText);
    rig.release(kNowhere);
    rig.press({40, 79});
    EXPECT_EQ(rig.page->currentBinFile(), 6);  // 90 / 15
}

TEST_F(LoopBin, NamesScrollSidewaysWithin200Pixels) {
    BarFonts fonts;
    rig.engine.files[0].name = "0123456789abcdef.wav";
    rig.open(fonts);
    EXPECT_EQ(shown(17, 75), kGround);
    // A track of 105 for 200: 21 pixels are 40, so that the first six characters and four pixels are outside.
    rig.drag({20, 224}, {41, 224});
    EXPECT_EQ(rig.page->binPosition(), (Point{40, 0}));
    EXPECT_EQ(shown(14, 75), kText);
    EXPECT_EQ(shown(19, 75), kGround);
    rig.drag({41, 224}, {600, 224});
    EXPECT_EQ(rig.page->binPosition(), (Point{200 - 105, 0}));
}

TEST_F(LoopBin, AFileOnAPadsImageIsLaidOnThatPad) {
    openWith(0);
    rig.press(PageRig::onBinRow(1));
    rig.move({200, 300});
    EXPECT_EQ(rig.window.cursor(), PageCursor::dragCopy);
    rig.move(PageRig::onPadImage(5));
    rig.release(PageRig::onPadImage(5));
    EXPECT_EQ(rig.changes(), (Calls{"PushUndoState", "LoadPadFromBin 5 1", "SetRefreshRequest 1"}));
    EXPECT_EQ(rig.page->currentPad(), 5);
    EXPECT_EQ(rig.page->currentBinFile(), 1);
    EXPECT_TRUE(rig.page->hasFocus(rig.control(kBinPlay)));
    rig.move({200, 300});
    EXPECT_EQ(rig.window.cursor(), PageCursor::arrow);
}

TEST_F(LoopBin, AFileOnARowOrItsNameIsLaidOnThatPad) {
    open();
    rig.drag(PageRig::onBinRow(2), PageRig::inRow(14, 300));
    EXPECT_EQ(rig.changes(), (Calls{"PushUndoState", "LoadPadFromBin 14 2", "SetRefreshRequest 1"}));
    EXPECT_EQ(rig.page->currentPad(), 14);
    rig.drag(PageRig::onBinRow(0), PageRig::onName(3));
    EXPECT_EQ(rig.changes(), (Calls{"PushUndoState", "LoadPadFromBin 3 0", "SetRefreshRequest 1"}));
    // Below the last row is the last row.
    rig.drag(PageRig::onBinRow(0), {300, 527});
    EXPECT_EQ(rig.changes(), (Calls{"PushUndoState", "LoadPadFromBin 15 0", "SetRefreshRequest 1"}));
}

TEST_F(LoopBin, ADragOverEmptyGroundAToggleOrAGapChangesNothingAndLeavesTheFileCurrent) {
    openWith(0);
    rig.page->SelectPad(7);
    rig.calls();
    const Point gap{300, 80};  // in the sixth pad's quarter, beside its image
    for (const Point at : {kNowhere, rig.on(muteId(4)), rig.on(kFirstOpen), gap, PageRig::onBinRow(2)}) {
        rig.drag(PageRig::onBinRow(1), at);
        EXPECT_EQ(rig.changes(), Calls{}) << at.x << ',' << at.y;
        EXPECT_EQ(rig.page->currentBinFile(), 1);
        EXPECT_EQ(rig.page->currentPad(), 7);
        // The drag is over: another release lays nothing.
        rig.release(PageRig::onPadImage(3));
        EXPECT_EQ(rig.changes(), Calls{});
    }
    EXPECT_EQ(rig.state(muteId(4)), 0);
    EXPECT_EQ(rig.window.takeLog(), Calls{});
}

TEST_F(LoopBin, AFileThatCannotBeLaidIsTakenBackSilently) {
    open();
    rig.engine.results["LoadPadFromBin"] = E_FAIL;
    rig.drag(PageRig::onBinRow(1), PageRig::onPadImage(5));
    EXPECT_EQ(rig.changes(), (Calls{"PushUndoState", "LoadPadFromBin 5 1", "Undo"}));
    EXPECT_EQ(rig.window.takeLog(), Calls{});
    EXPECT_EQ(rig.page->currentPad(), 0);
    EXPECT_EQ(rig.page->currentBinFile(), 1);
}

TEST_F(LoopBin, PlayAndStopHearTheCurrentFile) {
    openWith(2);
    const Calls stops{"StopBinAudition -1", "StopPad -1", "SetRefreshRequest 2"};
    click(kBinPlay);
    EXPECT_EQ(rig.changes(), Calls{"AuditionBinFile 2 -1"});
    EXPECT_EQ(rig.state(kBinPlay), 1);
    click(kBinPlay);
    EXPECT_EQ(rig.changes(), stops);
    EXPECT_EQ(rig.state(kBinPlay), 0);
    click(kBinPlay);
    rig.calls();
    click(kBinStop);
    EXPECT_EQ(rig.changes(), stops);
    EXPECT_EQ(rig.state(kBinPlay), 0);
    click(kBinStop);
    EXPECT_EQ(rig.changes(), stops);
}

TEST_F(LoopBin, PlayWithoutAFileStaysDownSilently) {
    open();
    click(kBinPlay);
    EXPECT_EQ(rig.changes(), Calls{});
    EXPECT_EQ(rig.state(kBinPlay), 1);
}

TEST_F(LoopBin, AFileIsDeletedAfterAYesAndTheOneBeforeItIsCurrent) {
    openWith(2);
    click(kDeleteFromBin, "yes");
    EXPECT_EQ(rig.window.takeLog(), Calls{kAskDelete + "yes"});
    EXPECT_EQ(rig.changes(), (Calls{"RemoveBinFile 2", "SetRefreshRequest 1"}));
    EXPECT_EQ(rig.page->currentBinFile(), 1);
    EXPECT_EQ(rig.state(kDeleteFromBin), 0);
}

TEST_F(LoopBin, AfterTheFirstFileIsDeletedNoneIsCurrentThoughOthersAreLeft) {
    open();
    selectGrain();
    ASSERT_EQ(rig.page->currentBinFile(), 0);
    ASSERT_FALSE(rig.page->binSelection().isEmpty());
    click(kDeleteFromBin, "yes");
    EXPECT_TRUE(nothingIsSelected());
    EXPECT_EQ(rig.changes(), (Calls{"RemoveBinFile 0", "SetRefreshRequest 1"}));
    EXPECT_EQ(rig.page->currentBinFile(), -1);
    EXPECT_EQ(rig.engine.files.size(), 2u);
}

TEST_F(LoopBin, AfterTheLastFileIsDeletedListAndStripAreEmpty) {
    BarFonts fonts;
    rig.engine.files.resize(1);
    rig.open(fonts);
    choose(0);
    // A grain of 20 pixels begins 8 from the strip's left; the path is above it.
    const Rect strip{37, 248, 581, 327};
    ASSERT_EQ(shown(39, 250), kPalette[6]);
    click(kDeleteFromBin, "yes");
    rig.window.tick();
    EXPECT_EQ(barsIn(0, kText, kGround), 0);
    int wrong = 0;
    for (int y = strip.top; y < strip.bottom; ++y)
        for (int x = strip.left; x < strip.right; ++x)
            wrong += shown(x, y) != skinBitmap(228).at(x - 1, y - 232);
    EXPECT_EQ(wrong, 0);
}

TEST_F(LoopBin, ANoKeepsTheFileAndItsSelections) {
    openWith(1);
    selectGrain();
    choose(1);
    click(kDeleteFromBin, "no");
    EXPECT_EQ(rig.window.takeLog(), Calls{kAskDelete + "no"});
    EXPECT_EQ(rig.changes(), Calls{"SetRefreshRequest 1"});
    EXPECT_EQ(rig.page->currentBinFile(), 1);
    EXPECT_EQ(rig.page->selection().size(), 1);
    EXPECT_EQ(rig.state(kDeleteFromBin), 0);
}

TEST_F(LoopBin, DeletingWithoutAFileAsksForOne) {
    open();
    click(kDeleteFromBin, "ok");
    EXPECT_EQ(rig.window.takeLog(), Calls{"? message \"Please select a file in the Loop Bin.\" -> ok"});
    EXPECT_EQ(rig.changes(), Calls{});
    EXPECT_EQ(rig.state(kDeleteFromBin), 0);
}

}  // namespace
}  // namespace marnoth::test::loop_bin_test
