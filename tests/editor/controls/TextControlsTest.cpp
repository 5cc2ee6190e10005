#include <gtest/gtest.h>

#include <algorithm>

#include "editor/TestPage.h"
#include "editor/controls/BitmapToggleCtrl.h"
#include "editor/controls/FxComboBox.h"
#include "editor/controls/FxEdit.h"
#include "editor/controls/StaticText.h"
#include "platform/drawing/RecordingSurface.h"

namespace marnoth::test::text_controls_test {
namespace {

using test::FixedFont;
using test::Heard;
using test::TestPage;

const Bitmap kUp(20, 19);
const Bitmap kDown(20, 19);

Heard drawn(Control& control) {
    RecordingSurface surface;
    control.paint(surface);
    return surface.calls();
}

bool has(const Heard& calls, const std::string& call) {
    return std::find(calls.begin(), calls.end(), call) != calls.end();
}

/// An edit at 43, 399 with room for four and a half characters, and a toggle that can take the keyboard.
struct EditOnPage {
    explicit EditOnPage(const std::string& text) {
        edit.setPlace(Rect::at(43, 399, 30, 12));
        edit.setFont(&font);
        edit.setText(text);
        toggle.setPlace(Rect::at(71, 27, 0, 0));
        toggle.LoadToggleBitmaps(kUp, kDown, nullptr, nullptr, false, true);
        toggle.m_pCallback = &page;
        page.controls = {&edit, &toggle};
    }
    /// In the gap before the character at `index`.
    static Point gap(int index) { return {45 + 6 * index, 404}; }
    /// Presses the edit where the caret is to be, when it has the keyboard already.
    void click(int index) {
        page.focus(&edit);
        page.screen.press(gap(index));
        page.screen.release(gap(index));
    }
    void chord(int modifier, int key) {
        page.screen.hold(modifier);
        page.screen.key(key);
        page.screen.let(modifier);
    }

    TestPage page;
    FixedFont font;
    CPlugInFilterControl<CFxEdit> edit{page, 1140};
    CPlugInFilterControl<CBitmapToggleCtrl> toggle{page, 1132};
};

TEST(Edit, EnteringSelectsAllSoThatTypingReplacesTheText) {
    EditOnPage it("C5");
    it.page.screen.press(it.gap(1));
    it.page.screen.release(it.gap(1));
    EXPECT_EQ(it.page.focused(), &it.edit);
    EXPECT_EQ(it.edit.selected(), "C5");
    it.page.screen.type("d#4");
    EXPECT_EQ(it.edit.text(), "d#4");
    EXPECT_EQ(it.page.take(), Heard{}) << "nobody is told before the edit is left";
}

TEST(Edit, ASecondPressSetsTheCaretToTheNearestGap) {
    EditOnPage it("0123");
    it.page.focus(&it.edit);
    it.page.screen.press({45 + 14, 404});  // 14 of 12 to 18: nearer to the gap before the 2
    it.page.screen.release({45 + 14, 404});
    it.page.screen.type("x");
    EXPECT_EQ(it.edit.text(), "01x23");
    it.page.screen.press({45 + 22, 404});
    it.page.screen.release({45 + 22, 404});
    it.page.screen.type("y");
    EXPECT_EQ(it.edit.text(), "01x2y3");
}

TEST(Edit, ADragSelectsAlsoFromOutside) {
    EditOnPage it("0123");
    it.click(0);
    it.page.screen.press(it.gap(1));
    it.page.screen.move(it.gap(3));
    EXPECT_EQ(it.edit.selected(), "12");
    it.page.screen.move({5, 5});
    EXPECT_EQ(it.edit.selected(), "0");
    it.page.screen.release({5, 5});
    EXPECT_EQ(it.page.take(), Heard{}) << "the release is the edit's, not the page's";
    it.page.screen.move(it.gap(4));
    EXPECT_EQ(it.edit.selected(), "0");
}

TEST(Edit, ADragThatEntersSelectsFromWhereItBegan) {
    EditOnPage it("0123");
    it.page.screen.press(it.gap(0));
    it.page.screen.move({46, 403});
    EXPECT_EQ(it.edit.selected(), "0123") << "not moved to another gap yet";
    it.page.screen.move(it.gap(2));
    EXPECT_EQ(it.edit.selected(), "01");
}

TEST(Edit, ADoubleClickSelectsAll) {
    EditOnPage it("0123");
    it.click(2);
    EXPECT_EQ(it.edit.selected(), "");
    it.page.screen.doubleClick(it.gap(2));
    it.page.screen.move(it.gap(3));
    EXPECT_EQ(it.edit.selected(), "0123");
}

TEST(Edit, TheKeysMoveTheCaret) {
    EditOnPage it("0123");
    it.click(2);
    it.page.screen.key(kKeyLeft);
    it.page.screen.type("a");
    it.page.screen.key(kKeyRight);
    it.page.screen.type("b");
    it.page.screen.key(kKeyHome);
    it.page.screen.type("c");
    it.page.screen.key(kKeyEnd);
    it.page.screen.type("d");
    EXPECT_EQ(it.edit.text(), "c0a1b23d");
}

TEST(Edit, AnArrowLeavesASelectionAtItsSide) {
    EditOnPage it("0123");
    it.page.focus(&it.edit);
    it.page.screen.key(kKeyLeft);
    it.page.screen.type("a");
    EXPECT_EQ(it.edit.text(), "a0123");
    it.chord(kKeyControl, kKeyA);
    it.page.screen.key(kKeyRight);
    it.page.screen.type("b");
    EXPECT_EQ(it.edit.text(), "a0123b");
}

TEST(Edit, ShiftExtendsTheSelection) {
    EditOnPage it("0123");
    it.click(2);
    it.chord(kKeyShift, kKeyRight);
    EXPECT_EQ(it.edit.selected(), "2");
    it.chord(kKeyShift, kKeyHome);
    EXPECT_EQ(it.edit.selected(), "01");
    it.chord(kKeyShift, kKeyLeft);
    EXPECT_EQ(it.edit.selected(), "01");
    it.chord(kKeyShift, kKeyEnd);
    EXPECT_EQ(it.edit.selected(), "23");
}

TEST(Edit, BackspaceAndDeleteTakeACharacterOrTheSelection) {
    EditOnPage it("0123456");
    it.click(3);
    it.page.screen.key(kKeyBackspace);
    it.page.screen.key(kKeyDelete);
    EXPECT_EQ(it.edit.text(), "01456");
    it.chord(kKeyShift, kKeyRight);
    it.page.screen.key(kKeyDelete);
    EXPECT_EQ(it.edit.text(), "0156");
    it.page.screen.key(kKeyHome);
    it.page.screen.key(kKeyBackspace);
    it.page.screen.key(kKeyEnd);
    it.page.screen.key(kKeyDelete);
    EXPECT_EQ(it.edit.text(), "0156") << "there is nothing on that side";
}

TEST(Edit, ACharacterOfSeveralBytesIsOne) {
    EditOnPage it("");
    it.page.focus(&it.edit);
    it.page.screen.type("a\xC3\xA9\xF0\x9D\x84\x9Ez");
    EXPECT_EQ(it.edit.text(), "a\xC3\xA9\xF0\x9D\x84\x9Ez");
    it.page.screen.key(kKeyLeft);
    it.page.screen.key(kKeyBackspace);
    EXPECT_EQ(it.edit.text(), "a\xC3\xA9z");
    it.page.screen.key(kKeyLeft);
    it.page.screen.key(kKeyDelete);
    EXPECT_EQ(it.edit.text(), "az");
}

TEST(Edit, WhatIsNoTextIsNotInserted) {
    EditOnPage it("C5");
    it.page.focus(&it.edit);
    for (const char32_t character : {U'\b', U'\r', U'\x1B', U'\x7F', char32_t{0xD800}, char32_t{0x110000}})
        it.page.character(character, {});
    EXPECT_EQ(it.edit.text(), "C5");
}

TEST(Edit, CutCopyAndPasteGoThroughTheClipboard) {
    EditOnPage it("0123");
    it.click(1);
    it.chord(kKeyShift, kKeyRight);
    it.chord(kKeyControl, kKeyC);
    EXPECT_EQ(it.page.screen.clipboardText(), "1");
    it.chord(kKeyShift, kKeyEnd);
    it.chord(kKeyControl, kKeyX);
    EXPECT_EQ(it.page.screen.clipboardText(), "123");
    EXPECT_EQ(it.edit.text(), "0");
    it.page.screen.key(kKeyHome);
    it.chord(kKeyControl, kKeyV);
    EXPECT_EQ(it.edit.text(), "1230");
    it.chord(kKeyControl, kKeyC);
    EXPECT_EQ(it.page.screen.clipboardText(), "123") << "nothing selected: nothing copied";
}

TEST(Edit, OnlyTheFirstLineIsPastedAndNoControlCharacters) {
    EditOnPage it("x");
    it.page.screen.setClipboardText("a\tb\r\nc");
    it.page.focus(&it.edit);
    it.chord(kKeyControl, kKeyV);
    EXPECT_EQ(it.edit.text(), "ab");
}

TEST(Edit, HoldsItsLengthAndCutsBetweenCharacters) {
    EditOnPage it("");
    std::string much(254, 'a');
    it.page.screen.setClipboardText(much + "\xC3\xA9");
    it.page.focus(&it.edit);
    it.chord(kKeyControl, kKeyV);
    EXPECT_EQ(it.edit.text(), much);
    it.page.screen.type("bc");
    EXPECT_EQ(it.edit.text(), much + "b");
}

TEST(Edit, LeavingTellsThePageAtOnceAndBeforeTheCommandOfTheToggleThatTookTheKeyboard) {
    EditOnPage it("C5");
    it.page.focus(&it.edit);
    it.page.screen.type("D5");
    it.page.screen.press({75, 30});
    EXPECT_EQ(it.page.take(), (Heard{"edit left 1140", "command 1132"}));
    EXPECT_EQ(it.edit.selected(), "");
}

TEST(Edit, ReturnAndThenLeavingAppliesTheTextTwiceWithTheSameResult) {
    EditOnPage it("C5");
    Heard applied;
    it.page.onEditDone = [&](int) {
        applied.push_back(it.edit.text());
        it.edit.setText("D#4");
    };
    it.page.focus(&it.edit);
    it.page.screen.type("d#4");
    it.page.screen.key(kKeyReturn);
    EXPECT_EQ(it.page.take(), Heard{"edit return 1140"});
    it.page.focus(nullptr);
    EXPECT_EQ(it.page.take(), Heard{"edit left 1140"});
    EXPECT_EQ(applied, (Heard{"d#4", "D#4"}));
}

TEST(Edit, ReturnIsToldWhenItsKeyGoesUp) {
    EditOnPage it("C5");
    it.page.focus(&it.edit);
    it.page.keyDown(kKeyReturn, {});
    EXPECT_EQ(it.page.take(), Heard{});
    it.page.keyUp(kKeyReturn, {});
    EXPECT_EQ(it.page.take(), Heard{"edit return 1140"});
}

TEST(Edit, ItsKeysDoNotReachThePage) {
    EditOnPage it("C5");
    it.click(0);
    it.page.screen.key(kKeyDelete);
    EXPECT_EQ(it.edit.text(), "5");
    EXPECT_EQ(it.page.seenByCallback, Heard{});
    it.page.focus(&it.toggle);
    it.page.screen.key(kKeyDelete);
    EXPECT_EQ(it.page.seenByCallback, Heard{"1132 key 46"});
}

TEST(Edit, TheSameTextWrittenAgainLeavesCaretAndSelection) {
    EditOnPage it("0123");
    it.click(1);
    it.chord(kKeyShift, kKeyRight);
    it.edit.setText("0123");
    EXPECT_EQ(it.edit.selected(), "1");
    it.edit.setText("45");
    EXPECT_EQ(it.edit.selected(), "");
    it.page.screen.type("6");
    EXPECT_EQ(it.edit.text(), "456");
}

TEST(Edit, DrawsLightTextOnTheDarkGroundClippedToItsPlace) {
    EditOnPage it("C5");
    EXPECT_EQ(drawn(it.edit),
              (Heard{"SelectClipRgn 43,399,73,411", "SelectPen 37,43,52", "SelectBrush 37,43,52",
                     "Rectangle 43,399,73,411", "SelectFont 12", "SetTextColor 160,172,191",
                     "SetGroundColor 37,43,52", "TextOut 45,399 \"C5\"", "SelectClipRgn none"}));
}

TEST(Edit, DrawsItsSelectionWithTheColoursExchanged) {
    EditOnPage it("0123");
    it.click(1);
    it.chord(kKeyShift, kKeyRight);
    const Heard calls = drawn(it.edit);
    const Heard text(calls.begin() + 5, calls.end() - 1);
    EXPECT_EQ(text, (Heard{"SetTextColor 160,172,191", "SetGroundColor 37,43,52", "TextOut 45,399 \"0\"",
                           "SetTextColor 37,43,52", "SetGroundColor 160,172,191", "TextOut 51,399 \"1\"",
                           "SetTextColor 160,172,191", "SetGroundColor 37,43,52", "TextOut 57,399 \"23\""}));
}

TEST(Edit, DrawsTheCaretWhereItStands) {
    EditOnPage it("0123");
    it.click(2);
    const Heard calls = drawn(it.edit);
    EXPECT_TRUE(has(calls, "MoveTo 57,400"));
    EXPECT_TRUE(has(calls, "LineTo 57,410"));
    it.page.focus(nullptr);
    EXPECT_FALSE(has(drawn(it.edit), "MoveTo 57,400"));
}

TEST(Edit, ScrollsSoThatTheCaretIsInSightAndRestsAtTheBeginning) {
    EditOnPage it("0123456789");  // 60 pixels in a room of 27
    it.page.focus(&it.edit);
    EXPECT_TRUE(has(drawn(it.edit), "TextOut 45,399 \"0123456789\"")) << "all selected";
    it.page.screen.key(kKeyEnd);
    Heard calls = drawn(it.edit);
    EXPECT_TRUE(has(calls, "TextOut 12,399 \"0123456789\"")) << "45 - (60 - 27)";
    EXPECT_TRUE(has(calls, "MoveTo 72,400")) << "the last pixel of the edit";
    it.page.screen.key(kKeyHome);
    EXPECT_TRUE(has(drawn(it.edit), "MoveTo 45,400"));
    it.page.screen.key(kKeyEnd);
    drawn(it.edit);
    it.page.screen.press(it.gap(0));  // the pixel 33 of the text: between the 5 and the 6, nearer to the 6
    it.page.screen.release(it.gap(0));
    it.page.screen.type("x");
    EXPECT_EQ(it.edit.text(), "012345x6789");
    it.page.focus(nullptr);
    EXPECT_TRUE(has(drawn(it.edit), "TextOut 45,399 \"012345x6789\""));
}

TEST(Edit, WithoutAFontItStillWorks) {
    EditOnPage it("");
    it.edit.setFont(nullptr);
    it.page.focus(&it.edit);
    it.page.screen.type("12");
    EXPECT_EQ(it.edit.text(), "12");
    for (const std::string& call : drawn(it.edit)) EXPECT_NE(call.substr(0, 7), "TextOut");
}

/// A combo of 60 by 12, with three items, at 534, 22 unless said otherwise; an edit below for the keyboard.
struct ComboOnPage {
    explicit ComboOnPage(Point at = {534, 22}) : corner(at) {
        combo.setPlace(Rect::at(at.x, at.y, 60, 12));
        combo.setFont(&font);
        combo.setItems({"Mix Only", "Chan 1", "Chan 2"});
        combo.select(0);
        edit.setPlace(Rect::at(554, 82, 34, 12));
        page.controls = {&combo, &edit};
    }
    Point onField() const { return {corner.x + 20, corner.y + 5}; }
    /// In the middle of a row of the list that opens below: one pixel of border, then 12 for each.
    Point onRow(int row) const { return {corner.x + 20, corner.y + 12 + 1 + 12 * row + 6}; }
    void click(Point at) {
        page.screen.press(at);
        page.screen.release(at);
    }
    Heard drawnList() {
        RecordingSurface surface;
        combo.paintOverlay(surface);
        return surface.calls();
    }

    Point corner;
    TestPage page;
    FixedFont font;
    CPlugInFilterControl<CFxComboBox> combo{page, 1143};
    CPlugInFilterControl<CFxEdit> edit{page, 1141};
};

TEST(Combo, APressOpensTheListAndAPressOnARowPicksIt) {
    ComboOnPage it;
    it.click(it.onField());
    EXPECT_TRUE(it.combo.isOpen());
    EXPECT_EQ(it.page.focused(), &it.combo);
    EXPECT_EQ(it.page.take(), Heard{});
    it.page.screen.press(it.onRow(2));
    EXPECT_FALSE(it.combo.isOpen());
    EXPECT_EQ(it.combo.text(), "Chan 2");
    EXPECT_EQ(it.combo.selection(), 2);
    EXPECT_EQ(it.page.take(), Heard{"combo closed 1143"});
    it.page.screen.release(it.onRow(2));
    EXPECT_EQ(it.page.take(), Heard{}) << "what lay under the list hears no release";
    EXPECT_FALSE(it.page.captured());
}

TEST(Combo, APressThatIsDraggedIntoTheListPicksWhereItIsLetGo) {
    ComboOnPage it;
    it.page.screen.press(it.onField());
    it.page.screen.move(it.onRow(1));
    it.page.screen.release(it.onRow(1));
    EXPECT_EQ(it.combo.selection(), 1);
    EXPECT_EQ(it.page.take(), Heard{"combo closed 1143"});
    EXPECT_FALSE(it.page.captured());
}

TEST(Combo, APressElsewhereClosesTheListAndDoesNothingMore) {
    ComboOnPage it;
    it.click(it.onField());
    it.click({300, 300});
    EXPECT_FALSE(it.combo.isOpen());
    EXPECT_EQ(it.combo.selection(), 0);
    EXPECT_EQ(it.page.take(), Heard{"combo closed 1143"});
    it.click({300, 300});
    EXPECT_EQ(it.page.take(), (Heard{"page down", "page up"}));
}

TEST(Combo, ASecondPressOnTheFieldClosesTheList) {
    ComboOnPage it;
    it.page.screen.doubleClick(it.onField());
    EXPECT_FALSE(it.combo.isOpen());
    EXPECT_EQ(it.page.take(), Heard{"combo closed 1143"});
    EXPECT_FALSE(it.page.captured());
}

TEST(Combo, TheListLiesBelowOrAboveWhereThereIsNoRoom) {
    ComboOnPage high;
    EXPECT_TRUE(high.combo.overlay().isEmpty());
    high.click(high.onField());
    EXPECT_EQ(high.combo.overlay(), (Rect{534, 34, 594, 72})) << "three rows of 12 and a border";
    ComboOnPage low({21, 515});  // 527 + 38 is below the page's 553
    low.click(low.onField());
    EXPECT_EQ(low.combo.overlay(), (Rect{21, 477, 81, 515}));
    low.click({40, 477 + 1 + 12 + 3});
    EXPECT_EQ(low.combo.text(), "Chan 1");
}

TEST(Combo, OpeningAndClosingNameTheAreaOfTheListAsOutOfDate) {
    ComboOnPage it;
    it.click(it.onField());
    it.page.screen.key(kKeyEscape);
    EXPECT_EQ(it.page.overlaysChanged, (std::vector<Rect>{{534, 34, 594, 72}, {534, 34, 594, 72}}));
}

TEST(Combo, TheListIsDrawnWithTheRowUnderThePointerLit) {
    ComboOnPage it;
    it.click(it.onField());
    it.page.screen.move(it.onRow(1));
    const Heard calls = it.drawnList();
    EXPECT_EQ(Heard(calls.begin(), calls.begin() + 3),
              (Heard{"SelectPen 160,172,191", "SelectBrush 37,43,52", "Rectangle 534,34,594,72"}));
    const auto lit = std::find(calls.begin(), calls.end(), "Rectangle 535,47,593,59");
    ASSERT_NE(lit, calls.end());
    EXPECT_EQ(Heard(lit - 1, lit + 4),
              (Heard{"SelectBrush 160,172,191", "Rectangle 535,47,593,59", "SetTextColor 37,43,52",
                     "SetGroundColor 160,172,191", "TextOut 536,47 \"Chan 1\""}));
    EXPECT_TRUE(has(calls, "TextOut 536,35 \"Mix Only\""));
    EXPECT_TRUE(has(calls, "TextOut 536,59 \"Chan 2\""));
    EXPECT_EQ(calls.back(), "SelectClipRgn none");
    it.page.screen.key(kKeyEscape);
    EXPECT_EQ(it.drawnList(), Heard{});
}

TEST(Combo, TheKeysWalkTheOpenListAndReturnPicks) {
    ComboOnPage it;
    it.click(it.onField());
    for (int i = 0; i < 5; ++i) it.page.screen.key(kKeyDown);
    it.page.screen.key(kKeyUp);
    EXPECT_EQ(it.combo.selection(), 0) << "not picked yet";
    it.page.screen.key(kKeyReturn);
    EXPECT_EQ(it.combo.selection(), 1);
    EXPECT_FALSE(it.page.captured());
    EXPECT_EQ(it.page.take(), (Heard{"combo closed 1143", "combo return 1143"}));
}

TEST(Combo, EscapeClosesAndKeepsTheText) {
    ComboOnPage it;
    it.click(it.onField());
    it.page.screen.key(kKeyDown);
    it.page.screen.key(kKeyEscape);
    EXPECT_EQ(it.combo.selection(), 0);
    EXPECT_FALSE(it.page.captured());
    EXPECT_EQ(it.page.take(), Heard{"combo closed 1143"});
}

TEST(Combo, WithItsListClosedUpAndDownWalkTheItemsAndTellNobody) {
    ComboOnPage it;
    it.page.focus(&it.combo);
    it.page.screen.key(kKeyDown);
    EXPECT_EQ(it.combo.text(), "Chan 1");
    it.page.screen.key(kKeyUp);
    it.page.screen.key(kKeyUp);
    EXPECT_EQ(it.combo.text(), "Mix Only");
    EXPECT_EQ(it.page.take(), Heard{});
}

TEST(Combo, ReturnChangesNothingUntilTheFocusMoves) {
    ComboOnPage it;
    it.page.focus(&it.combo);
    it.page.screen.type("Chan 2");
    it.page.screen.key(kKeyReturn);
    EXPECT_EQ(it.page.take(), Heard{"combo return 1143"}) << "a message that nobody listens to";
    it.page.focus(&it.edit);
    EXPECT_EQ(it.page.take(), Heard{"combo left 1143"});
    EXPECT_EQ(it.combo.selection(), 2);
}

TEST(Combo, ATextThatIsNoItemHasNoSelection) {
    ComboOnPage it;
    it.page.focus(&it.combo);
    it.page.screen.type("chan 2");
    EXPECT_EQ(it.combo.selection(), -1);
    it.combo.select(17);
    EXPECT_EQ(it.combo.text(), "");
    EXPECT_EQ(it.combo.selection(), -1);
}

TEST(Combo, LosingTheKeyboardClosesTheListFirst) {
    ComboOnPage it;
    it.click(it.onField());
    it.page.focus(nullptr);
    EXPECT_EQ(it.page.take(), (Heard{"combo closed 1143", "combo left 1143"}));
    EXPECT_FALSE(it.page.captured());
    EXPECT_FALSE(it.combo.isOpen());
}

TEST(Combo, AMouseThatIsTakenAwayClosesTheList) {
    ComboOnPage it;
    it.click(it.onField());
    it.combo.handle({ControlEventKind::captureLost, {}});
    EXPECT_FALSE(it.combo.isOpen());
    EXPECT_EQ(it.page.take(), Heard{"combo closed 1143"});
}

TEST(Combo, ChoosingIsOpeningPickingAndClosingInOne) {
    ComboOnPage it;
    it.page.focus(&it.edit);
    EXPECT_TRUE(it.combo.choose("Chan 1"));
    EXPECT_EQ(it.page.take(), (Heard{"edit left 1141", "combo closed 1143"}));
    EXPECT_EQ(it.combo.selection(), 1);
    EXPECT_FALSE(it.page.captured());
    EXPECT_FALSE(it.combo.choose("Chan 9"));
    EXPECT_EQ(it.page.take(), Heard{});
}

TEST(Combo, DrawsItsTextBesideAnArrow) {
    ComboOnPage it;
    const Heard calls = drawn(it.combo);
    EXPECT_TRUE(has(calls, "SelectClipRgn 534,22,587,34")) << "seven pixels are the arrow's";
    EXPECT_TRUE(has(calls, "TextOut 536,22 \"Mix Only\""));
    const Heard arrow(calls.end() - 6, calls.end());
    EXPECT_EQ(arrow, (Heard{"MoveTo 588,27", "LineTo 593,27", "MoveTo 589,28", "LineTo 592,28",
                            "MoveTo 590,29", "LineTo 591,29"}));
}

TEST(StaticText, DrawsDarkTextOnBlueAndLeavesTheMouseToThePage) {
    TestPage page;
    FixedFont font;
    StaticText text(page, 1172);
    text.setPlace(Rect::at(504, 216, 34, 12));
    text.setFont(&font);
    text.setText("-Inf");
    page.controls = {&text};
    EXPECT_EQ(drawn(text),
              (Heard{"SelectClipRgn 504,216,538,228", "SelectPen 124,144,173", "SelectBrush 124,144,173",
                     "Rectangle 504,216,538,228", "SelectFont 12", "SetTextColor 37,43,52",
                     "SetGroundColor 124,144,173", "TextOut 506,216 \"-Inf\"", "SelectClipRgn none"}));
    page.screen.press({510, 220});
    EXPECT_EQ(page.take(), Heard{"page down"});
}

}  // namespace
}  // namespace marnoth::test::text_controls_test
