#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "editor/PageLayout.h"
#include "editor/PlainFont.h"
#include "editor/strip/KeyMapEditor.h"
#include "platform/drawing/RecordingSurface.h"

namespace marnoth::test::key_map_editor_test {
namespace {

using Calls = std::vector<std::string>;

// The keyboard's half unit is 520 / 86 = 6.0465 pixels, a white key 12.093. C of octave n is the half unit
// 14 n; half units 5 and 13 of an octave are gaps. A white key's middle is a unit right of its left edge.
constexpr int kC4 = 396;  ///< 51 + 57 units
constexpr int kD4 = 408;  ///< 51 + 59 units
constexpr int kC5 = 480;  ///< 51 + 71 units
constexpr int kD5 = 492;  ///< 51 + 73 units
constexpr int kC6 = 565;  ///< 51 + 85 units
constexpr int kOnKeys = 300;
constexpr int kOnHandles = 263;

class KeyMapEditor : public testing::Test {
protected:
    KeyMapEditor() { editor.setUp(kKeyMapRect, 6); }

    bool press(int x, int y = kOnKeys) { return editor.OnKeyMapPress({x, y}, entry, &note, &drag); }
    void dragTo(int x, bool shift = false) { editor.OnKeyMapDrag({x, 0}, shift, &entry); }
    void draw() { editor.DrawKeyMap(surface, kStripPlot, entry, font); }
    void expectKeys(int low, int high, int root) const {
        EXPECT_EQ(entry.lowKey, low);
        EXPECT_EQ(entry.highKey, high);
        EXPECT_EQ(entry.rootKey, root);
    }
    /// The calls from `first` on, `count` of them; fewer when it wasn't made.
    Calls callsFrom(const std::string& first, int count) const {
        auto at = std::find(surface.calls().begin(), surface.calls().end(), first);
        Calls found;
        for (; at != surface.calls().end() && count > 0; --count) found.push_back(*at++);
        return found;
    }
    /// The places of the keys, in the order of drawing.
    Calls rectangles() const {
        Calls found;
        for (const std::string& call : surface.calls())
            if (call.starts_with("Rectangle ")) found.push_back(call.substr(10));
        return found;
    }
    /// The pen and the brush of a key.
    Calls colorsOf(const std::string& key) const {
        const auto at = std::find(surface.calls().begin(), surface.calls().end(), "Rectangle " + key);
        if (at - surface.calls().begin() < 2 || at == surface.calls().end()) return {};
        return {*(at - 2), *(at - 1)};
    }

    CKeyMapEditor editor;
    KeyMapRecord entry{0, 48, 72, 60, 0, 127};
    int note = -1;
    bool drag = false;
    RecordingSurface surface;
    test::PlainFont font{12};
};

TEST_F(KeyMapEditor, KeysAreFoundByTheirPlace) {
    EXPECT_EQ(editor.NoteFromX(51), 0);
    // C sharp lies from 1.5 units to 2.5: 9.1 to 15.1 pixels.
    EXPECT_EQ(editor.NoteFromX(60), 0);
    EXPECT_EQ(editor.NoteFromX(61), 1);
    EXPECT_EQ(editor.NoteFromX(66), 1);
    EXPECT_EQ(editor.NoteFromX(67), 2);
    EXPECT_EQ(editor.NoteFromX(kC4), 48);
    EXPECT_EQ(editor.NoteFromX(kC5), 60);
    EXPECT_EQ(editor.NoteFromX(kC6), 72);
}

TEST_F(KeyMapEditor, GapsBelongHalfToEachNeighbour) {
    // E to F: the gap from 5.5 units to 6.5 is 33.3 to 39.3 pixels, its middle at 36.3.
    EXPECT_EQ(editor.NoteFromX(85), 4);
    EXPECT_EQ(editor.NoteFromX(87), 4);
    EXPECT_EQ(editor.NoteFromX(88), 5);
    // B to C: from 13.5 units to 14.5, its middle at 84.7.
    EXPECT_EQ(editor.NoteFromX(51 + 84), 11);
    EXPECT_EQ(editor.NoteFromX(51 + 85), 12);
}

TEST_F(KeyMapEditor, NotesAreHeldToTheKeyboard) {
    for (const int x : {50, -1000, std::numeric_limits<int>::min()}) EXPECT_EQ(editor.NoteFromX(x), 0) << x;
    for (const int x : {2000, std::numeric_limits<int>::max()}) EXPECT_EQ(editor.NoteFromX(x), 127) << x;
}

TEST_F(KeyMapEditor, LowHighAndRootAreDraggedByTheirKeys) {
    EXPECT_TRUE(press(kC4));
    EXPECT_TRUE(drag);
    EXPECT_EQ(note, 48);
    dragTo(kD4);
    expectKeys(50, 72, 60);
    EXPECT_TRUE(press(kC6));
    dragTo(kD5);
    expectKeys(50, 62, 60);
    EXPECT_TRUE(press(kC5));
    dragTo(kC4);
    expectKeys(50, 62, 48);
}

TEST_F(KeyMapEditor, AKeyThatIsLowAndHighIsTakenAsHigh) {
    entry = {0, 48, 48, 60, 0, 127};
    press(kC4);
    dragTo(kD4);
    expectKeys(48, 50, 60);
}

TEST_F(KeyMapEditor, AKeyThatIsRootAndHighIsTakenAsRoot) {
    entry = {0, 48, 60, 60, 0, 127};
    press(kC5);
    dragTo(kD5);
    expectKeys(48, 60, 62);
}

TEST_F(KeyMapEditor, LowMayPassHigh) {
    entry.highKey = 60;
    entry.rootKey = 50;
    press(kC4);
    dragTo(kC6);
    expectKeys(72, 60, 50);
}

TEST_F(KeyMapEditor, WithShiftTheRangeMovesAsAWhole) {
    press(kC5);
    dragTo(kD5, true);
    expectKeys(50, 74, 62);
    // The distance counts from the entry as it stands.
    dragTo(kC5, true);
    expectKeys(48, 72, 60);
}

TEST_F(KeyMapEditor, WithShiftTheRangeHasNoBounds) {
    entry = {0, 0, 127, 60, 0, 127};
    press(kC5);
    dragTo(kC4, true);
    expectKeys(-12, 115, 48);
    dragTo(kC6, true);
    expectKeys(12, 139, 72);
}

TEST_F(KeyMapEditor, KeysAtTheEndsOfIntStayThere) {
    const int most = std::numeric_limits<int>::max();
    entry = {0, most, -most - 1, 60, 0, 127};
    press(kC5);
    dragTo(kC6, true);
    expectKeys(most, -most + 11, 72);
    dragTo(kC4, true);
    expectKeys(most - 24, -most - 1, 48);
}

TEST_F(KeyMapEditor, AnyOtherKeyPansTheKeyboardAgainstTheMouse) {
    EXPECT_TRUE(press(kD4));
    EXPECT_EQ(note, 50);
    dragTo(kD4 - 40);
    EXPECT_EQ(editor.NoteFromX(kD4 - 40), 50);
    expectKeys(48, 72, 60);
    // From where the press was, not from the last move.
    dragTo(kD4 - 10);
    EXPECT_EQ(editor.NoteFromX(kD4 - 10), 50);
    // The next press goes on where the keyboard stands.
    editor.endDrag();
    press(kD4 - 10);
    dragTo(kD4 - 30);
    EXPECT_EQ(editor.NoteFromX(kD4 - 30), 50);
}

TEST_F(KeyMapEditor, WithShiftPanningRests) {
    press(kD4);
    dragTo(kD4 - 40, true);
    EXPECT_EQ(editor.NoteFromX(kD4), 50);
}

TEST_F(KeyMapEditor, PanningByTheWidestMoveStaysCalculable) {
    press(kD4);
    dragTo(std::numeric_limits<int>::min());
    EXPECT_EQ(editor.NoteFromX(kD4), 127);
    dragTo(std::numeric_limits<int>::max());
    EXPECT_EQ(editor.NoteFromX(kD4), 0);
}

TEST_F(KeyMapEditor, ScrollStopsWhereTheKeyboardMeetsTheRectangle) {
    press(kD4);
    dragTo(kD4 - 100000);
    draw();
    // The keyboard has 6.0465 * 149.75 + 0.5 = 905 pixels, 385 more than the rectangle. The last key, half
    // unit 148, begins at 51 - 385 + 895 and ends at 51 - 385 + 907 + 1.
    EXPECT_FALSE(callsFrom("Rectangle 561,267,574,322", 1).empty());
    // C of octave 10, half unit 140, begins at 51 - 385 + 847: two digits stand a pixel further left.
    EXPECT_FALSE(callsFrom("TextOut 514,309 \"10\"", 1).empty());
    press(kD4);
    dragTo(kD4 + 100000);
    draw();
    EXPECT_EQ(editor.NoteFromX(51), 0);
}

TEST_F(KeyMapEditor, AfterTheReleaseNothingIsHeld) {
    press(kC4);
    editor.endDrag();
    dragTo(kD4);
    expectKeys(48, 72, 60);
}

TEST_F(KeyMapEditor, APressForgetsWhatTheOneBeforeHeld) {
    press(kC4);
    press(50);
    dragTo(kD4);
    expectKeys(48, 72, 60);
    // Of a handle its edge counts, of a key the key.
    press(390, kOnHandles);
    press(kC5);
    dragTo(kD5);
    expectKeys(48, 72, 62);
}

TEST_F(KeyMapEditor, PressesBesideTheKeysTakeNothing) {
    for (const Point beside : {Point{50, 300}, Point{571, 300}, Point{390, 322}, Point{390, 260}}) {
        note = -5;
        drag = true;
        EXPECT_FALSE(press(beside.x, beside.y)) << beside.x << ',' << beside.y;
        EXPECT_FALSE(drag);
        EXPECT_EQ(note, -5);
    }
}

TEST_F(KeyMapEditor, TheLowHandleStandsAtItsKeysLeftEdge) {
    // C4 begins at 51 + 56 units = 390, D4 at 51 + 58 units = 402.
    EXPECT_TRUE(press(390, 261));
    EXPECT_TRUE(drag);
    EXPECT_TRUE(press(390, 266));
    dragTo(402);
    expectKeys(50, 72, 60);
}

TEST_F(KeyMapEditor, TheHighHandleStandsAtItsKeysRightEdge) {
    entry.highKey = 60;
    // C5 ends at 51 + 72 units = 486, D5 at 51 + 74 units = 498.
    EXPECT_TRUE(press(486, kOnHandles));
    dragTo(498);
    expectKeys(48, 62, 60);
}

TEST_F(KeyMapEditor, OfTwoHandlesTheHighOneIsTaken) {
    entry = {0, 48, 47, 60, 0, 127};
    EXPECT_TRUE(press(390, kOnHandles));
    dragTo(402);
    // What ends where D4 begins is C4.
    expectKeys(48, 48, 60);
}

TEST_F(KeyMapEditor, BetweenHandlesNothingIsTaken) {
    EXPECT_FALSE(press(430, kOnHandles));
    EXPECT_FALSE(drag);
    dragTo(402);
    expectKeys(48, 72, 60);
}

TEST_F(KeyMapEditor, TheHighHandleFindsItsKeyBesideAGap) {
    // The gap between E4 and F4 is half unit 61. A high edge is in it from 62.5 units to 63.5: 378 to 384
    // pixels, in the middle of F.
    entry = {0, 0, 52, 20, 0, 127};
    EXPECT_TRUE(press(430, kOnHandles));
    EXPECT_FALSE(press(434, kOnHandles));
    entry.highKey = 53;
    EXPECT_FALSE(press(430, kOnHandles));
    EXPECT_TRUE(press(434, kOnHandles));
}

TEST_F(KeyMapEditor, TheLowHandleFindsItsKeyBesideAGap) {
    // A low edge is in the gap from 60.5 units to 61.5: 366 to 372 pixels, in the middle of E.
    entry = {0, 52, 127, 20, 0, 127};
    EXPECT_TRUE(press(418, kOnHandles));
    EXPECT_FALSE(press(422, kOnHandles));
    entry.lowKey = 53;
    EXPECT_FALSE(press(418, kOnHandles));
    EXPECT_TRUE(press(422, kOnHandles));
}

TEST_F(KeyMapEditor, DrawsInItsOwnClipAndGivesTheOtherOneBack) {
    draw();
    EXPECT_EQ(surface.calls()[0], "SelectClipRgn 51,261,571,322");
    EXPECT_EQ(surface.calls()[1], "SelectFont 12");
    EXPECT_EQ(surface.calls().back(), "SelectClipRgn 37,248,581,327");
}

TEST_F(KeyMapEditor, DrawingBeginsAndEndsWithAKeyBesideAGap) {
    // The first half unit is 5 with 36 pixels scrolled: E. The last one is 93, G sharp.
    press(kD4);
    dragTo(kD4 - 36);
    draw();
    EXPECT_EQ(rectangles().size(), 77u);  // notes 4 to 80
    EXPECT_EQ(rectangles().front(), "39,267,52,322");
    // With 12 pixels they are 1 and 89, which is a gap: C sharp and E.
    surface.clear();
    dragTo(kD4 - 12);
    draw();
    EXPECT_EQ(rectangles().size(), 76u);  // notes 1 to 76
}

TEST_F(KeyMapEditor, DrawsTheKeysThatCanBeSeen) {
    // Half units -1 to 87, notes 0 to 75: 44 white keys and then 32 black ones.
    draw();
    const Calls keys = rectangles();
    ASSERT_EQ(keys.size(), 76u);
    const auto endsAt = [](const char* bottom) { return [=](auto& key) { return key.ends_with(bottom); }; };
    EXPECT_EQ(std::count_if(keys.begin(), keys.begin() + 44, endsAt(",322")), 44);
    EXPECT_EQ(std::count_if(keys.begin() + 44, keys.end(), endsAt(",300")), 32);  // 267 + 3 * 55 / 5
}

TEST_F(KeyMapEditor, WhiteKeysHaveTheColoursOfTheirPlaceInTheRange) {
    draw();
    // Half unit 0, outside: 51 to 51 + 12 + 1.
    EXPECT_EQ(colorsOf("51,267,64,322"), (Calls{"SelectPen 0,0,0", "SelectBrush 160,172,191"}));
    // D4, inside: white key 29, 351 to 363 + 1.
    EXPECT_EQ(colorsOf("402,267,415,322"), (Calls{"SelectPen 91,99,120", "SelectBrush 124,144,173"}));
    // C5, the root: white key 35, 423 to 435 + 1.
    EXPECT_EQ(colorsOf("474,267,487,322"), (Calls{"SelectPen 91,99,120", "SelectBrush 200,200,150"}));
}

TEST_F(KeyMapEditor, EachCHasItsOctave) {
    draw();
    EXPECT_EQ(callsFrom("Rectangle 51,267,64,322", 4),
              (Calls{"Rectangle 51,267,64,322", "SetGroundColor 160,172,191", "SetTextColor 91,99,120",
                     "TextOut 54,309 \"0\""}));
    EXPECT_EQ(callsFrom("Rectangle 474,267,487,322", 4),
              (Calls{"Rectangle 474,267,487,322", "SetGroundColor 200,200,150", "SetTextColor 91,99,120",
                     "TextOut 477,309 \"5\""}));
    // C4, inside: 390 to 402 + 1.
    EXPECT_EQ(callsFrom("Rectangle 390,267,403,322", 4),
              (Calls{"Rectangle 390,267,403,322", "SetGroundColor 124,144,173", "SetTextColor 37,43,52",
                     "TextOut 393,309 \"4\""}));
    const Calls& calls = surface.calls();
    EXPECT_EQ(std::count_if(calls.begin(), calls.end(), [](auto& c) { return c.starts_with("TextOut"); }), 7);
}

TEST_F(KeyMapEditor, BlackKeysHaveTheColoursOfTheirPlaceInTheRange) {
    entry.rootKey = 51;
    draw();
    // 7 wide around the border of two white keys: C sharp of octave 0 at 51 + 12 - 3.
    EXPECT_EQ(colorsOf("60,267,67,300"), (Calls{"SelectPen 0,0,0", "SelectBrush 0,0,0"}));
    // C sharp 4 at 51 + 351 - 3, inside.
    EXPECT_EQ(colorsOf("399,267,406,300"), (Calls{"SelectPen 91,99,120", "SelectBrush 91,99,120"}));
    // D sharp 4 at 51 + 363 - 3, the root.
    EXPECT_EQ(colorsOf("411,267,418,300"), (Calls{"SelectPen 91,99,120", "SelectBrush 200,200,150"}));
}

TEST_F(KeyMapEditor, HandlesStandAtTheOuterEdgesOfTheRange) {
    draw();
    // C4's left edge, and C6's right one: white key 42 ends at 51 + 520 + 1.
    const Calls expected{"SelectPen 160,172,191", "SelectBrush 160,172,191",
                         "Polygon 390,266 387,261 393,261", "Polygon 572,266 569,261 575,261",
                         "SelectClipRgn 37,248,581,327"};
    EXPECT_EQ(Calls(surface.calls().end() - 5, surface.calls().end()), expected);
}

TEST_F(KeyMapEditor, HandlesStandAtBlackKeysToo) {
    entry.lowKey = 49;
    entry.highKey = 70;
    draw();
    // C sharp 4's left edge; A sharp 5's right one, 51 + 496 - 3 + 7.
    EXPECT_FALSE(callsFrom("Polygon 399,266 396,261 402,261", 1).empty());
    EXPECT_FALSE(callsFrom("Polygon 551,266 548,261 554,261", 1).empty());
}

TEST_F(KeyMapEditor, KeysThatAreNotDrawnHaveNoHandle) {
    entry.lowKey = -12;
    entry.highKey = 127;
    draw();
    const Calls& calls = surface.calls();
    EXPECT_EQ(std::count_if(calls.begin(), calls.end(), [](auto& c) { return c.starts_with("Polygon"); }), 0);
}

}  // namespace
}  // namespace marnoth::test::key_map_editor_test
