#include <set>

#include "editor/PanelRig.h"
#include "editor/controls/PageControls.h"
#include "editor/skin/Skin.h"

/// The controls on the page: where they are, how the mouse and the keyboard come to them, and the key map in
/// the strip.
namespace marnoth::test::page_controls_test {
namespace {

using Toggle = CPlugInFilterControl<CBitmapToggleCtrl>;
using Button = CPlugInFilterControl<CBitmapButton>;
using Zoom = CPlugInFilterControl<CZoomButton>;
using Knob = CPlugInFilterControl<CBitmapKnobCtrl>;
using Edit = CPlugInFilterControl<CFxEdit>;
using Combo = CPlugInFilterControl<CFxComboBox>;

enum class Kind { toggle, button, zoom, knob, edit, combo, readOut };

struct Expected {
    int id;
    Kind kind;
    int left, top, width, height;
};

std::vector<Expected> expectedOfPad(int pad) {
    const int x = 138 + 89 * (pad % 4);
    const int y = 43 + 57 * (pad / 4);
    return {{pad == 15 ? 1040 : 1024 + pad, Kind::toggle, x + 19, y + 1, 16, 15},
            {1145 + pad, Kind::toggle, x + 36, y + 1, 16, 15},
            {1041 + pad, Kind::toggle, x + 53, y + 1, 16, 15},
            {1057 + pad, Kind::toggle, x + 70, y + 1, 16, 15},
            {1073 + pad, Kind::toggle, x + 2, y + 1, 15, 14},
            {1093 + pad, Kind::knob, x + 47, y - 37, 17, 17},
            {1109 + pad, Kind::knob, x + 65, y - 17, 17, 17}};
}

std::vector<Expected> expectedControls() {
    std::vector<Expected> all{
        {1165, Kind::button, 50, 27, 20, 19},    {1161, Kind::toggle, 10, 29, 15, 14},
        {1162, Kind::toggle, 31, 29, 15, 14},    {1132, Kind::toggle, 71, 27, 20, 19},
        {1133, Kind::button, 92, 27, 20, 19},    {1092, Kind::toggle, 113, 27, 21, 19},
        {1126, Kind::toggle, 115, 52, 15, 14},   {1144, Kind::toggle, 98, 52, 15, 14},
        {1125, Kind::toggle, 500, 176, 9, 9},    {1137, Kind::toggle, 500, 190, 9, 9},
        {1166, Kind::toggle, 548, 176, 9, 9},    {1127, Kind::zoom, 567, 535, 10, 12},
        {1128, Kind::zoom, 556, 535, 10, 12},    {1129, Kind::zoom, 583, 519, 12, 10},
        {1130, Kind::zoom, 583, 508, 12, 10},    {1134, Kind::edit, 43, 399, 30, 12},
        {1135, Kind::edit, 43, 438, 30, 12},     {1136, Kind::edit, 43, 477, 30, 12},
        {1167, Kind::knob, 15, 397, 17, 17},     {1168, Kind::knob, 15, 435, 17, 17},
        {1169, Kind::knob, 15, 474, 17, 17},     {1141, Kind::edit, 554, 82, 34, 12},
        {1142, Kind::edit, 554, 99, 34, 12},     {1140, Kind::edit, 554, 121, 34, 12},
        {1139, Kind::edit, 554, 138, 34, 12},    {1138, Kind::edit, 554, 155, 34, 12},
        {1143, Kind::combo, 534, 22, 60, 12},    {1170, Kind::combo, 534, 40, 60, 12},
        {1171, Kind::combo, 534, 58, 60, 12},    {1174, Kind::combo, 21, 515, 60, 12},
        {1172, Kind::readOut, 504, 216, 34, 12}, {1173, Kind::readOut, 554, 216, 34, 12}};
    for (int pad = 0; pad < 16; ++pad)
        for (const Expected& control : expectedOfPad(pad)) all.push_back(control);
    return all;
}

template <class Class>
bool isA(const Control& control) {
    return dynamic_cast<const Class*>(&control) != nullptr;
}

bool isOfKind(const Control& control, Kind kind) {
    // In the order of `Kind`.
    const std::array is{isA<Toggle>(control),    isA<Button>(control), isA<Zoom>(control),
                        isA<Knob>(control),      isA<Edit>(control),   isA<Combo>(control),
                        isA<StaticText>(control)};
    return is[static_cast<std::size_t>(kind)];
}

bool isOfBitmaps(Kind kind) {
    return kind == Kind::toggle || kind == Kind::button || kind == Kind::zoom || kind == Kind::knob;
}

class PageControl : public PanelRig {};

TEST_F(PageControl, EachIsOfItsClassAndAtItsPlace) {
    open();
    for (const Expected& expected : expectedControls()) {
        const Control* control = rig.page->controlOf(expected.id);
        ASSERT_NE(control, nullptr) << expected.id;
        EXPECT_TRUE(isOfKind(*control, expected.kind)) << expected.id;
        EXPECT_EQ(control->place(), Rect::at(expected.left, expected.top, expected.width, expected.height))
            << expected.id;
    }
}

TEST_F(PageControl, ThereIsNoOther) {
    open();
    std::set<int> expected;
    for (const Expected& control : expectedControls()) expected.insert(control.id);
    ASSERT_EQ(expected.size(), 144u);
    std::set<int> found;
    for (int id = 0; id < 0x8000; ++id)
        if (rig.page->controlOf(id)) found.insert(id);
    EXPECT_EQ(found, expected);
}

TEST_F(PageControl, AKnobAtItsEndShowsItsLastFrame) {
    pad(6).volume = 2.0f;
    open();
    ASSERT_EQ(rig.state(1099), 100);
    const Rect place = rig.control(1099).place();
    for (int y = 0; y < 17; ++y)
        for (int x = 0; x < 17; ++x)
            ASSERT_EQ(rig.page->screen().at(place.left + x, place.top + y),
                      skinBitmap(237).at(63 * 17 + x, y));
}

TEST_F(PageControl, ThreeJobsShowThreeSigns) {
    open();
    const auto shows = [&](int id, int number) {
        const Rect place = rig.control(id).place();
        for (int y = 0; y < place.height(); ++y)
            for (int x = 0; x < place.width(); ++x)
                if (rig.page->screen().at(place.left + x, place.top + y) != skinBitmap(number).at(x, y))
                    return false;
        return true;
    };
    EXPECT_TRUE(shows(kOpenProject, 212));
    EXPECT_TRUE(shows(kLoadToBin, 214));
    // The ring of the first pad, which is the current one, stays off its buttons.
    for (int pad = 0; pad < 16; ++pad) EXPECT_TRUE(shows(kFirstOpen + pad, 216)) << pad;
}

TEST_F(PageControl, AKnobIsDraggedWithoutAPointerThatIsPutBack) {
    open();
    const Point at = rig.on(1099);
    rig.press(at);
    EXPECT_EQ(rig.window.cursor(), PageCursor::none);
    EXPECT_TRUE(rig.window.hasCapture());
    EXPECT_EQ(rig.changes(), Calls{"SetPadVolume 6 1"});
    rig.move({at.x + 200, at.y - 10});
    EXPECT_EQ(rig.changes(), Calls{callText("SetPadVolume", 6, 1.2f)});
    EXPECT_EQ(rig.window.pointer(), at);
    rig.move({at.x - 100, at.y});
    EXPECT_EQ(rig.changes(), Calls{callText("SetPadVolume", 6, 1.2f)}) << "sideways nothing is turned";
    rig.move({at.x, -400});
    rig.move({at.x, at.y - 1});
    EXPECT_EQ(rig.changes(), (Calls{"SetPadVolume 6 2", "SetPadVolume 6 2"})) << "told at its end as well";
    rig.release(at);
    EXPECT_EQ(rig.changes(), Calls{});
    EXPECT_EQ(rig.window.cursor(), PageCursor::arrow);
    EXPECT_FALSE(rig.window.hasCapture());
}

TEST_F(PageControl, ADoubleClickOnAKnobIsToldThreeTimes) {
    pad(6).volume = 0.4f;
    open();
    const Point at = rig.on(1099);
    rig.press(at);
    rig.move(at);
    rig.release(at);
    rig.page->doubleClick(at, {});
    const std::string before = callText("SetPadVolume", 6, 0.4f);
    EXPECT_EQ(rig.changes(), (Calls{before, before, "SetPadVolume 6 1"}));
    EXPECT_EQ(rig.text(1172), "0.0");
}

TEST_F(PageControl, AToggleThatThePressSlidesOffShowsTheOldStateThoughTheEngineHasTheNew) {
    open();
    rig.press(rig.on(1027));
    EXPECT_EQ(rig.changes(), Calls{"SetPadMute 3 1"});
    rig.move({300, 300});
    EXPECT_EQ(rig.state(1027), 0);
    rig.release({300, 300});
    EXPECT_EQ(rig.state(1027), 0);
    EXPECT_EQ(rig.changes(), Calls{});
    rig.engine.refreshRequest = 1;
    rig.window.tick();
    EXPECT_EQ(rig.state(1027), 1) << "until the engine is read again";
}

TEST_F(PageControl, AnEditThatLosesTheKeyboardToAToggleIsAppliedFirst) {
    open();
    rig.page->focusControl(rig.control(1140));
    rig.window.type("A4");
    rig.press(rig.on(1026));
    EXPECT_EQ(rig.changes(), (Calls{"SetKeyMapEntry 0 60 60 57 0 127", "SetPadMute 2 1"}));
}

TEST_F(PageControl, ReturnAppliesAnEditAndLeavingItAppliesItAgain) {
    open();
    rig.enter(1140, "a4");
    EXPECT_EQ(rig.changes(), Calls{"SetKeyMapEntry 0 60 60 57 0 127"});
    EXPECT_EQ(rig.text(1140), "A4");
    EXPECT_EQ(left(), Calls{"SetKeyMapEntry 0 60 60 57 0 127"});
    EXPECT_EQ(rig.text(1140), "A4");
}

TEST_F(PageControl, ReturnInAComboChangesNothingUntilTheKeyboardMovesOn) {
    open();
    rig.page->focusControl(rig.control(1143));
    rig.window.key(kKeyDown);
    rig.window.key(kKeyReturn);
    EXPECT_EQ(rig.text(1143), "Chan 1");
    EXPECT_EQ(rig.changes(), Calls{});
    EXPECT_EQ(left(), Calls{"SetPadOutput 0 1"});
}

TEST_F(PageControl, KeysInAnEditStayThere) {
    rig.fillPad(0, 4);
    open();
    rig.click(PageRig::onBeat(0, 1));
    rig.page->focusControl(rig.control(1140));
    rig.calls();
    rig.window.key(kKeyHome);
    for (const int key : {kKeyDelete, kKeyRight, kKeyAdd, kKeyF1}) rig.window.key(key);
    EXPECT_EQ(rig.text(1140), "5") << "a character of C5 went, not a grain";
    EXPECT_EQ(rig.changes(), Calls{});
    EXPECT_EQ(rig.window.helpShown(), 0);
    left();
    rig.window.key(kKeyDelete);
    EXPECT_EQ(rig.changes(), (Calls{"PushUndoState", "DeleteGrain 0 1 1", "CommitGrainEdits"}));
}

TEST_F(PageControl, KeysOnEveryControlOfBitmapsReachThePageAlone) {
    open();
    int shown = 0;
    for (const Expected& expected : expectedControls()) {
        if (expected.kind == Kind::readOut) continue;
        rig.page->focusControl(rig.control(expected.id));
        const std::optional<int> state = rig.control(expected.id).shownState();
        rig.window.key(kKeyF1);
        if (isOfBitmaps(expected.kind)) {
            ++shown;
            rig.window.key(kKeySpace);
            EXPECT_EQ(rig.control(expected.id).shownState(), state) << expected.id;
        }
        EXPECT_EQ(rig.window.helpShown(), shown) << expected.id;
    }
    EXPECT_EQ(shown, 130);
}

TEST_F(PageControl, ThePageConsumesKeysAndWantsThemAllAndLeavesTheRest) {
    open();
    Control& toggle = rig.control(1026);
    const auto answer = [&](ControlEventKind kind) {
        int result = 99;
        const bool consumed = rig.page->OnControlMessage(toggle, {kind, {}, 'Q', 'q'}, &result);
        return std::pair(consumed, result);
    };
    for (const auto kind : {ControlEventKind::keyDown, ControlEventKind::keyUp, ControlEventKind::character})
        EXPECT_EQ(answer(kind), std::pair(true, 0));
    EXPECT_EQ(answer(ControlEventKind::queryKeys), std::pair(true, 4));
    for (const auto kind : {ControlEventKind::mouseMove, ControlEventKind::leftUp, ControlEventKind::leftDown,
                            ControlEventKind::doubleClick, ControlEventKind::focusIn,
                            ControlEventKind::focusOut, ControlEventKind::captureLost})
        EXPECT_EQ(answer(kind), std::pair(false, 99)) << static_cast<int>(kind);
    EXPECT_EQ(rig.calls(), Calls{});
}

TEST_F(PageControl, AFileDragIsCarriedOnOverTheControls) {
    rig.addFile("beat.wav", 4);
    open();
    rig.press(PageRig::onBinRow(0));
    rig.calls();
    // Open of pad 3 has its corner at 318, 44: ten pixels above it is the pad's image.
    Control& toggle = rig.control(1075);
    int result = 99;
    rig.window.setCursor(PageCursor::arrow);
    EXPECT_FALSE(rig.page->OnControlMessage(toggle, {ControlEventKind::mouseMove, {3, 3}}, &result));
    EXPECT_EQ(rig.window.cursor(), PageCursor::dragCopy);
    EXPECT_FALSE(rig.page->OnControlMessage(toggle, {ControlEventKind::leftUp, {3, -10}}, &result));
    EXPECT_EQ(rig.changes(), (Calls{"PushUndoState", "LoadPadFromBin 2 0", "SetRefreshRequest 1"}));
}

TEST_F(PageControl, AFileThatIsLetGoOverATogglesPictureIsLaidNowhere) {
    rig.addFile("beat.wav", 4);
    open();
    rig.drag(PageRig::onBinRow(0), rig.on(1075));
    EXPECT_EQ(rig.changes(), Calls{});
    EXPECT_EQ(rig.state(1075), 0);
    EXPECT_EQ(rig.page->currentBinFile(), 0) << "it stays current";
    rig.release(PageRig::onPadImage(2));
    EXPECT_EQ(rig.changes(), Calls{}) << "the drag is over";
}

TEST_F(PageControl, FastClicksOnAZoomButtonAllCount) {
    open();
    rig.window.doubleClick(rig.on(1127));
    EXPECT_DOUBLE_EQ(rig.page->scale().pixelsPerBeat, 54.0 * 1.5 * 1.5);
    rig.window.doubleClick(rig.on(1129));
    EXPECT_EQ(rig.page->scale().rowHeight, 20);
    rig.window.doubleClick(rig.on(1133));
    EXPECT_EQ(rig.changes(), (Calls{"StopBinAudition -1", "StopPad -1", "SetRefreshRequest 2"}))
        << "of a plain button only the first";
}

/// The key map of pad 1 in the strip, from C4 to C6 with the root C5. Half a white key is 520 / 86 = 6.0465
/// pixels wide, 14 halves are an octave, and each of these is the middle of a white key.
class PageKeyMap : public PanelRig {
protected:
    static constexpr int kC4 = 396;  ///< 51 + 57 halves
    static constexpr int kD4 = 408;  ///< 51 + 59 halves
    static constexpr int kC5 = 480;  ///< 51 + 71 halves
    static constexpr int kD5 = 492;  ///< 51 + 73 halves
    static constexpr int kC6 = 565;  ///< 51 + 85 halves

    PageKeyMap() { setKeys(48, 72, 60); }
    void setKeys(int low, int high, int root) {
        pad(0).lowKey = low;
        pad(0).highKey = high;
        pad(0).rootKey = root;
    }
    void openStrip() {
        open();
        rig.click({16, 260});  // the tab of the key map
        rig.calls();
    }
    /// From key to key, or along the handles above them.
    Calls dragged(int from, int to, int y = 300) {
        rig.drag({from, y}, {to, y});
        return rig.changes();
    }
    Calls shown() { return texts({1139, 1138, 1140, 1141, 1142}); }
};

TEST_F(PageKeyMap, LowHighAndRootAreDraggedByTheirKeys) {
    openStrip();
    ASSERT_TRUE(rig.page->showsKeyMap());
    EXPECT_EQ(dragged(kC4, kD4), Calls{"SetKeyMapEntry 0 50 72 60 0 127"});
    EXPECT_EQ(dragged(kC6, kC5), Calls{"SetKeyMapEntry 0 50 60 60 0 127"});
    EXPECT_EQ(dragged(kC5, kC4), Calls{"SetKeyMapEntry 0 50 60 48 0 127"})
        << "the root lies over the high key";
    EXPECT_EQ(shown(), (Calls{"D4", "C5", "C4", "0", "127"}));
}

TEST_F(PageKeyMap, AKeyThatIsLowAndHighIsTakenAsHigh) {
    setKeys(48, 48, 60);
    openStrip();
    EXPECT_EQ(dragged(kC4, kD4), Calls{"SetKeyMapEntry 0 48 50 60 0 127"});
}

TEST_F(PageKeyMap, AHandleIsDraggedAboveTheKeys) {
    openStrip();
    // The low handle stands at the left edge of C4, 51 + 56 halves, the high one right of C6.
    EXPECT_EQ(dragged(390, 402, 263), Calls{"SetKeyMapEntry 0 50 72 60 0 127"});
    setKeys(48, 60, 72);
    EXPECT_EQ(dragged(486, 498, 263), Calls{"SetKeyMapEntry 0 48 62 72 0 127"});
    EXPECT_EQ(dragged(440, 460, 263), Calls{}) << "between the handles there is nothing to hold";
}

TEST_F(PageKeyMap, AnyOtherKeyPansTheKeyboard) {
    openStrip();
    const int between = 440;
    EXPECT_EQ(dragged(between, between - 60), Calls{"SetKeyMapEntry 0 48 72 60 0 127"});
    EXPECT_EQ(dragged(kC5 - 60, kD5 - 60), Calls{"SetKeyMapEntry 0 48 72 62 0 127"})
        << "it followed inversely";
    EXPECT_EQ(dragged(between, between + 300), Calls{"SetKeyMapEntry 0 48 72 62 0 127"});
    EXPECT_EQ(dragged(kD5, kC5), Calls{"SetKeyMapEntry 0 48 72 60 0 127"}) << "and stopped at its begin";
}

TEST_F(PageKeyMap, WithShiftPanningRests) {
    openStrip();
    rig.window.hold(kKeyShift);
    EXPECT_EQ(dragged(440, 380), Calls{"SetKeyMapEntry 0 48 72 60 0 127"});
    rig.window.let(kKeyShift);
    EXPECT_EQ(dragged(kC5, kD5), Calls{"SetKeyMapEntry 0 48 72 62 0 127"}) << "the keys are where they were";
}

TEST_F(PageKeyMap, PanningStopsWhereTheKeyboardEnds) {
    setKeys(48, 127, 60);
    openStrip();
    // The whole keyboard is 905 pixels wide, 385 more than the strip shows. G10 is the last key: its middle
    // lies 140 + 9 halves from the begin, at 51 + 901 - 385, and F sharp a half to the left.
    dragged(540, -2000);
    EXPECT_EQ(dragged(567, 561), Calls{"SetKeyMapEntry 0 48 126 60 0 127"});
}

TEST_F(PageKeyMap, WithShiftTheRangeMovesWithTheKeyAndHasNoBounds) {
    setKeys(1, 126, 60);
    openStrip();
    rig.window.hold(kKeyShift);
    EXPECT_EQ(dragged(kC5, kD5), Calls{"SetKeyMapEntry 0 3 128 62 0 127"});
    EXPECT_EQ(shown(), (Calls{"D#0", "G10", "D5", "0", "127"})) << "the read-outs are held";
    EXPECT_EQ(dragged(kD5, kC4), Calls{"SetKeyMapEntry 0 -11 114 48 0 127"});
}

TEST_F(PageKeyMap, EachMoveReadsWritesAndShowsAndDrawsTheStripAgain) {
    openStrip();
    rig.press({kC4, 300});
    rig.calls();
    rig.move({kD4, 300});
    // Read for the drag, written, read by each setter of the range, and read to be drawn.
    Calls expected{"GetKeyMapEntry 0", "SetKeyMapEntry 0 50 72 60 0 127",
                   "GetKeyMapEntry 0", "GetKeyMapEntry 0",
                   "GetBinFileCount",  "GetKeyMapEntry 0"};
    for (const std::string& call : padBlockDrawn()) expected.push_back(call);
    EXPECT_EQ(rig.calls(), expected);
}

TEST_F(PageKeyMap, ALowKeyBeyondTheHighKeyIsShownByLowThenHigh) {
    setKeys(48, 60, 72);
    openStrip();
    EXPECT_EQ(dragged(kC4, kD5), Calls{"SetKeyMapEntry 0 62 60 72 0 127"}) << "the entry has no order";
    EXPECT_EQ(shown(), (Calls{"C5", "C5", "C6", "0", "127"})) << "the high key's setter came last";
}

TEST_F(PageKeyMap, AfterTheReleaseNothingIsHeld) {
    openStrip();
    dragged(kC4, kD4);
    rig.move({kC5, 300});
    EXPECT_EQ(rig.changes(), Calls{});
}

}  // namespace
}  // namespace marnoth::test::page_controls_test
