#include <gtest/gtest.h>

#include <algorithm>

#include "editor/PageRig.h"
#include "editor/skin/Palette.h"
#include "editor/skin/Skin.h"
#include "support/Sparingly.h"

/// The page from its opening to its end: what it reads and when, and its picture where nothing but the skin
/// is.
namespace marnoth::test::page_life_test {
namespace {

constexpr Point kNowhere{20, 548};  ///< ground without a control on it

Calls joined(Calls first, const Calls& then) {
    first.insert(first.end(), then.begin(), then.end());
    return first;
}

std::string named(const std::string& operation, int pad) {
    return operation + " " + std::to_string(pad);
}

/// What showing a pad's own settings reads. The entry of the key map is read once for all five values, and
/// once more by each of the two keys that hold each other.
Calls padControlReads(int pad) {
    Calls reads;
    for (const char* const operation :
         {"GetKeyMapEntry", "GetKeyMapEntry", "GetKeyMapEntry", "GetPadOutput", "GetPadRootNote",
          "GetPadChannel", "GetPadFollowKey", "GetPadTail", "GetPadOneShot", "GetPadVolume", "GetPadPan"})
        reads.push_back(named(operation, pad));
    return reads;
}

Calls refreshReads(int pad) {
    Calls reads{"GetAuditionEnabled", named("GetPadOneShot", pad), named("GetPadTail", pad),
                named("GetPadFollowKey", pad)};
    reads = joined(reads, padControlReads(pad));
    for (int each = 0; each < 16; ++each)
        for (const char* const operation :
             {"GetPadMute", "GetPadSolo", "GetPadSynced", "GetPadLooping", "GetPadVolume", "GetPadPan"})
            reads.push_back(named(operation, each));
    return reads;
}

Calls playingReads() {
    Calls reads;
    for (int pad = 0; pad < 16; ++pad) reads.push_back(named("GetPadPlaying", pad));
    return reads;
}

/// What a paint of everything reads while no file is current.
Calls paintReads() {
    Calls reads = joined(joined({"GetBinFileCount"}, playingReads()), {"GetBinFileCount"});
    for (int pad = 0; pad < 16; ++pad)
        reads = joined(reads, {named("GetPadEndTime", pad), named("GetLoopLength 1", pad)});
    for (int pad = 0; pad < 16; ++pad)
        reads = joined(reads, {named("GetPadGrainList", pad), named("GetLoopLength 1", pad)});
    return reads;
}

/// An object that is no engine.
class Stranger final : public IUnknown {
public:
    HRESULT QueryInterface(REFIID, void** object) override {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
};

class PageLife : public testing::Test {
protected:
    /// The page in its window, without an engine.
    void makePage() {
        rig.window.setFonts(rig.fonts);
        rig.page = std::make_unique<CGrooveSamplerPropPage>(rig.window);
        rig.window.setPage(rig.page.get());
    }
    void bindTo(std::vector<IUnknown*> objects) { rig.page->bind(objects); }
    void askForRefresh() {
        rig.engine.SetRefreshRequest(1);
        rig.calls();
    }
    Color shown(int x, int y) const { return rig.window.screen().at(x, y); }
    bool showsPicture(int pad, int number) const {
        const Rect place = padImage(pad);
        for (int y = 0; y < place.height(); ++y)
            for (int x = 0; x < place.width(); ++x)
                if (shown(place.left + x, place.top + y) != skinBitmap(number).at(x, y)) return false;
        return true;
    }
    bool showsPlaying(int pad) const { return showsPicture(pad, 240 + 2 * pad); }
    bool showsIdle(int pad) const { return showsPicture(pad, 241 + 2 * pad); }

    PageRig rig;
};

TEST_F(PageLife, OpeningReadsEverythingInItsOrderAndBeginsToPoll) {
    makePage();
    bindTo({&rig.engine});
    EXPECT_EQ(rig.calls(), Calls{});
    EXPECT_EQ(rig.window.timerPeriod(), 0);
    rig.page->open();
    EXPECT_EQ(rig.calls(), refreshReads(0));
    EXPECT_EQ(rig.window.timerPeriod(), 200);
    rig.window.settle();
    EXPECT_EQ(rig.calls(), paintReads());
}

TEST_F(PageLife, ADragOfWhatAnotherEngineReplacesEndsWithoutEffect) {
    rig.fillPad(0, 4);
    rig.open();
    RecordingSampler second;
    second.pads = rig.engine.pads;
    const Point mark = rig.inRow(0, 54 * 4);
    const Point grain = rig.onBeat(0, 1);
    for (const Point from : {mark, grain, rig.onPadImage(3)}) {
        bindTo({&rig.engine});
        rig.press(from);
        rig.move(rig.onBeat(1, 2));
        bindTo({&second});
        second.take();
        rig.move(rig.onBeat(2, 2));
        rig.release(rig.onBeat(2, 2));
        EXPECT_EQ(second.takeChanges(), Calls{}) << from.x;
    }
    EXPECT_EQ(rig.engine.pads[0].grains.size(), 4u);
}

TEST_F(PageLife, WhatIsTypedForAnotherEngineIsForgotten) {
    rig.open();
    rig.page->focusControl(rig.control(kLowVelocity));
    rig.window.type("77");
    EXPECT_TRUE(rig.page->isTyping());
    RecordingSampler second;
    bindTo({&second});
    EXPECT_FALSE(rig.page->isTyping());
    second.take();
    rig.window.key(kKeyReturn);
    EXPECT_EQ(second.takeChanges(), Calls{});
}

TEST_F(PageLife, WithoutARequestATickAsksOnlyWhichPadsPlay) {
    rig.open();
    rig.engine.pads[3].playing = true;
    rig.window.tick();
    EXPECT_EQ(rig.calls(), joined({"GetRefreshRequest"}, playingReads()));
    EXPECT_TRUE(showsPlaying(3));
    EXPECT_TRUE(showsIdle(5));
    rig.engine.pads[3].playing = false;
    rig.window.tick();
    EXPECT_TRUE(showsIdle(3));
}

TEST_F(PageLife, ARequestOfTwoLightsPadsButRereadsNothing) {
    rig.open();
    rig.engine.pads[5].playing = true;
    rig.engine.pads[5].mute = true;
    rig.engine.SetRefreshRequest(2);
    rig.calls();
    rig.window.tick();
    EXPECT_EQ(rig.calls(), joined({"GetRefreshRequest"}, playingReads()));
    EXPECT_TRUE(showsPlaying(5));
    EXPECT_EQ(rig.state(muteId(5)), 0);
}

TEST_F(PageLife, TwoRequestsBetweenTwoTicksGiveOneRefresh) {
    rig.open();
    rig.engine.pads[15].mute = true;
    askForRefresh();
    askForRefresh();
    rig.window.tick();
    EXPECT_EQ(rig.calls(), joined(joined({"GetRefreshRequest"}, refreshReads(0)), paintReads()));
    EXPECT_EQ(rig.state(1040), 1);
    rig.window.tick();
    EXPECT_EQ(rig.calls(), joined({"GetRefreshRequest"}, playingReads()));
}

TEST_F(PageLife, TheTimerStandsWhileEverythingIsRead) {
    rig.open();
    askForRefresh();
    std::map<std::string, int> periods;
    rig.engine.onCall = [&](const std::string& call) { periods.emplace(call, rig.window.timerPeriod()); };
    rig.window.tick();
    EXPECT_EQ(periods.at("GetRefreshRequest"), 200);
    EXPECT_EQ(periods.at("GetAuditionEnabled"), 0);
    EXPECT_EQ(periods.at("GetPadPan 15"), 0);
    EXPECT_EQ(periods.at("GetPadPlaying 0"), 200);
    EXPECT_EQ(rig.window.timerPeriod(), 200);
}

TEST_F(PageLife, BindingAnewTakesTheFirstEngineAndForgetsSelectionsAndFile) {
    rig.addFile("beat.wav", 2);
    rig.fillPad(2, 2);
    rig.open();
    rig.click(PageRig::onBeat(2, 1));
    ASSERT_EQ(rig.page->selection().size(), 1);
    ASSERT_EQ(rig.page->currentBinFile(), 0);
    rig.calls();
    Stranger stranger;
    RecordingSampler second;
    RecordingSampler third;
    bindTo({&stranger, &second, &third});
    EXPECT_EQ(rig.engine.references, 0u);
    EXPECT_EQ(second.references, 1u);
    EXPECT_EQ(third.references, 0u);
    EXPECT_EQ(rig.calls(), Calls{});
    EXPECT_EQ(second.take(), refreshReads(2));
    EXPECT_EQ(third.take(), Calls{});
    EXPECT_TRUE(rig.page->selection().isEmpty());
    EXPECT_TRUE(rig.page->binSelection().isEmpty());
    EXPECT_EQ(rig.page->currentBinFile(), -1);
    rig.page.reset();
    rig.window.setPage(nullptr);
}

TEST_F(PageLife, WithoutAnEngineThePagePaintsItsGroundAndIdlePadsAndReadsNothing) {
    makePage();
    Stranger stranger;
    bindTo({&stranger});
    rig.page->open();
    rig.window.settle();
    EXPECT_EQ(shown(kNowhere.x, kNowhere.y), skinBitmap(201).at(kNowhere.x, kNowhere.y));
    // The ring of the first pad lies close around its image.
    for (int pad = 1; pad < 16; ++pad) EXPECT_TRUE(showsIdle(pad)) << pad;
    EXPECT_EQ(rig.text(kPadVolumeText), "");
    EXPECT_EQ(rig.text(kSnap), "");
    EXPECT_EQ(rig.window.timerPeriod(), 200);
    rig.window.tick();
    EXPECT_EQ(rig.text(kPadVolumeText), "");
}

TEST_F(PageLife, WithoutAnEngineClicksAndKeysEverywhereDoNoHarm) {
    makePage();
    rig.page->open();
    for (int y = 2; y < kPageHeight; y += 20 * kSparingly)
        for (int x = 2; x < kPageWidth; x += 19) {
            rig.click({x, y});
            if (x % 5 == 0) rig.window.doubleClick({x, y});
            if (y % 5 == 0) rig.window.rightClick({x, y});
        }
    for (const char* const file : {"yes", "beat.wav", "song.mrn"}) rig.window.answer(file);
    for (const int id : {+kClearProject, +kLoadToBin, +kSaveProject}) rig.click(rig.on(id));
    rig.window.hold(kKeyControl);
    for (int key = 0; key < 128; ++key) rig.window.key(key);
    const std::vector<std::string> files{"/loops/beat.wav"};
    for (const Point at : {PageRig::onBinRow(0), PageRig::onPadImage(3), kNowhere})
        rig.window.drop(at, files);
    rig.window.tick();
    EXPECT_EQ(rig.page->currentPad(), 3);
    EXPECT_EQ(rig.page->currentBinFile(), -1);
    EXPECT_TRUE(rig.page->selection().isEmpty());
    EXPECT_TRUE(showsIdle(9));
    EXPECT_EQ(rig.window.timerPeriod(), 200);
}

TEST_F(PageLife, ClosingStopsTheTimerAndLetsTheEngineGo) {
    rig.open();
    EXPECT_EQ(rig.engine.references, 1u);
    rig.window.setPage(nullptr);
    rig.page.reset();
    EXPECT_EQ(rig.window.timerPeriod(), 0);
    EXPECT_EQ(rig.engine.references, 0u);
    EXPECT_EQ(rig.changes(), Calls{});
}

TEST_F(PageLife, AnotherPageOnTheSameEngineBeginsWithItsOwnView) {
    rig.fillPad(4, 2);
    rig.open();
    rig.click(rig.on(kZoomIn));
    rig.click(rig.on(kRowsHigher));
    rig.click({16, 260});
    rig.click(PageRig::onPadImage(4));
    ASSERT_EQ(rig.page->scale().pixelsPerBeat, 81.0);
    ASSERT_EQ(rig.page->scale().rowHeight, 15);
    ASSERT_TRUE(rig.page->showsKeyMap());
    rig.window.setPage(nullptr);
    rig.page.reset();
    rig.open();
    EXPECT_EQ(rig.page->currentPad(), 0);
    EXPECT_EQ(rig.page->scale().pixelsPerBeat, 54.0);
    EXPECT_EQ(rig.page->scale().rowHeight, 10);
    EXPECT_EQ(rig.text(kSnap), "12");
    EXPECT_FALSE(rig.page->showsKeyMap());
    EXPECT_EQ(rig.engine.pads[4].grains.size(), 2u);
}

TEST_F(PageLife, ChoosingAPadReadsItsSettingsAloneAlsoWhenItIsTheCurrentOne) {
    rig.open();
    for (const int pad : {11, 11, 0}) {
        rig.page->SelectPad(pad);
        EXPECT_EQ(rig.calls(), padControlReads(pad));
    }
}

TEST_F(PageLife, AuditionAndHelpAreOneCallEach) {
    rig.open();
    rig.click(rig.on(kAudition));
    EXPECT_EQ(rig.changes(), Calls{"SetAuditionEnabled 1"});
    rig.click(rig.on(kAudition));
    EXPECT_EQ(rig.changes(), Calls{"SetAuditionEnabled 0"});
    rig.window.key(kKeyF1);
    EXPECT_EQ(rig.window.helpShown(), 1);
    EXPECT_EQ(rig.calls(), Calls{});
}

TEST_F(PageLife, WhereNothingLiesOnItTheSkinIsSeen) {
    rig.addFile("loop.wav", 1);
    rig.open();
    std::vector<Rect> covered{
        kBinList,           kPadView, {100, 537, 553, 545}, {585, 350, 593, 504}, {124, 69, 132, 218},
        {14, 220, 119, 228}};
    // Around the first pad, with a pen of two pixels: 137, 4 to 227, 62.
    for (const Rect& side : {Rect{136, 3, 228, 6}, {136, 60, 228, 63}, {136, 3, 139, 63}, {225, 3, 228, 63}})
        covered.push_back(side);
    for (int pad = 0; pad < 16; ++pad) covered.push_back(padImage(pad));
    for (int id = 1000; id < 1200; ++id)
        if (const Control* control = rig.page->controlOf(id)) covered.push_back(control->place());
    int compared = 0;
    int wrong = 0;
    for (int y = 0; y < kPageHeight; ++y)
        for (int x = 0; x < kPageWidth; ++x) {
            const auto holds = [&](const Rect& area) { return area.contains({x, y}); };
            if (std::ranges::any_of(covered, holds)) continue;
            // The pads' ground is drawn after the strip's and over its first two rows.
            const Color ground = Rect::at(135, 2, 360, 232).contains({x, y})
                                     ? skinBitmap(290).at(x - 135, y - 2)
                                 : kStripPanel.contains({x, y}) ? skinBitmap(228).at(x - 1, y - 232)
                                                                : skinBitmap(201).at(x, y);
            ++compared;
            wrong += shown(x, y) != ground;
        }
    EXPECT_GT(compared, 150000);
    EXPECT_EQ(wrong, 0);
}

/// A page over two files of loops, and two pads with grains of them.
void openWithLoops(PageRig& rig) {
    for (int file = 0; file < 20; ++file) rig.addFile("loop.wav", 4);
    rig.fillPad(0, 40);
    rig.fillPad(5, 3);
    rig.open();
}

TEST_F(PageLife, TellsWhileItsUserTypesOrHasAListOpen) {
    rig.open();
    EXPECT_FALSE(rig.page->isTyping());
    rig.page->focusControl(rig.control(kLowVelocity));
    EXPECT_FALSE(rig.page->isTyping()) << "nothing is typed yet";
    rig.window.type("3");
    EXPECT_TRUE(rig.page->isTyping());
    rig.window.key(kKeyReturn);
    EXPECT_FALSE(rig.page->isTyping());
    rig.window.type("4");
    rig.page->focusControl(rig.control(kHighVelocity));
    EXPECT_FALSE(rig.page->isTyping()) << "another field has the keyboard";
    rig.click(rig.on(kMidiChannel));
    EXPECT_TRUE(rig.page->isTyping()) << "a list is open";
    rig.click(kNowhere);
    EXPECT_FALSE(rig.page->isTyping());
}

TEST_F(PageLife, APageShowsHowAnotherWasLeft) {
    openWithLoops(rig);
    rig.click(PageRig::onBinRow(1));
    rig.select(5, 2);
    rig.alsoSelect(5, 0);
    rig.click({kKeyMapTab.left + 4, kKeyMapTab.top + 4});
    rig.click(rig.on(kZoomIn));
    rig.click(rig.on(kRowsHigher));
    rig.window.wheel(PageRig::onBeat(5, 0), WheelAxis::horizontal, 2);
    rig.window.wheel(PageRig::onBinRow(3), WheelAxis::vertical, -1);
    rig.move(kNowhere);
    const KeptView left = rig.page->keptView();
    EXPECT_EQ(left.currentPad, 5);
    EXPECT_EQ(left.pixelsPerBeat, 81.0);
    EXPECT_EQ(left.rowHeight, 15);
    EXPECT_EQ(left.editorPosition.x, 162);
    EXPECT_GT(left.binPosition.y, 0);
    const std::vector<EventSelectionInfo> selected{{5, 2}, {5, 0}};
    EXPECT_EQ(left.selection, selected);
    const Bitmap seen = rig.page->screen();

    PageRig other;
    openWithLoops(other);
    other.page->show(left);
    other.window.settle();
    EXPECT_EQ(other.page->keptView(), left);
    int differing = 0;
    for (int y = 0; y < kPageHeight; ++y)
        for (int x = 0; x < kPageWidth; ++x) differing += seen.at(x, y) != other.page->screen().at(x, y);
    EXPECT_EQ(differing, 0);
}

TEST_F(PageLife, OfAViewNothingIsShownThatCantBe) {
    openWithLoops(rig);
    rig.page->show({.currentPad = 99,
                    .currentBinFile = 20,
                    .selection = {{5, 3}, {-1, 0}, {16, 0}, {5, -1}, {5, 2}},
                    .binSelection = {{19, 4}, {18, 0}, {19, 3}},
                    .pixelsPerBeat = 1e300,
                    .rowHeight = -2147483647,
                    .snapIndex = -4,
                    .editorPosition = {2147483647, -5},
                    .binPosition = {-1, 2147483647},
                    .showsKeyMap = false});
    rig.window.settle();
    const KeptView shown = rig.page->keptView();
    EXPECT_EQ(shown.currentPad, 15);
    EXPECT_EQ(shown.currentBinFile, 19);
    EXPECT_EQ(shown.selection, (std::vector<EventSelectionInfo>{{5, 2}}));
    EXPECT_EQ(shown.binSelection, (std::vector<EventSelectionInfo>{{19, 3}}));
    EXPECT_EQ(shown.pixelsPerBeat, 200.0);
    EXPECT_EQ(shown.rowHeight, 10);
    EXPECT_EQ(shown.snapIndex, 0);
    // 41 beats of 200 pixels less the 446 of the plot; twenty rows of 15 pixels less the list's 149.
    EXPECT_EQ(shown.editorPosition, (Point{41 * 200 - kPadPlot.width(), 0}));
    EXPECT_EQ(shown.binPosition, (Point{0, 20 * 15 - kBinList.height()}));
}

TEST_F(PageLife, ARingLiesAroundTheCurrentPad) {
    rig.open();
    // Pad 11 in the third column and row: 315, 118 to 405, 176 with the right and bottom edges outside.
    const Point ring[] = {{315, 150}, {404, 150}, {360, 118}, {360, 175}};
    for (const Point at : ring) EXPECT_EQ(shown(at.x, at.y), skinBitmap(290).at(at.x - 135, at.y - 2));
    rig.click(PageRig::onPadImage(10));
    for (const Point at : ring) EXPECT_EQ(shown(at.x, at.y), kPalette[8]);
    rig.click(PageRig::onPadImage(0));
    for (const Point at : ring) EXPECT_EQ(shown(at.x, at.y), skinBitmap(290).at(at.x - 135, at.y - 2));
}

}  // namespace
}  // namespace marnoth::test::page_life_test
