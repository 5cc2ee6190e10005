#include <gtest/gtest.h>

#include "editor/PageRig.h"
#include "editor/files/LoadMessages.h"
#include "editor/skin/Palette.h"

/// Files that are dropped onto the page from outside.
namespace marnoth::test::file_drops_test {
namespace {

constexpr Point kNowhere{20, 548};  ///< ground without a control on it
const Point kOnList{14, 69};

/// How the load of a file ends.
struct Ending {
    HRESULT result;
    std::uint32_t status;
    std::string message;
    bool isInBin;
};
const Ending kFailures[] = {
    {S_OK, 1, kFull, false}, {S_OK, 2, kPatch, true}, {S_OK, 3, kWrong, false}, {E_FAIL, 0, kWrong, false}};

class FileDrops : public testing::Test {
protected:
    FileDrops() {
        rig.addFile("old.wav", 2);
        rig.fillPad(0, 2);
    }
    void open() { rig.open(); }
    void drop(Point at, const std::vector<std::string>& paths = {"/in/a.wav", "/in/b.wav", "/in/c.wav"}) {
        rig.calls();
        rig.window.drop(at, paths);
    }
    /// Of the loads that are told in a call that begins so, each ends so.
    void failAt(const std::string& call, const Ending& ending) {
        rig.window.answer("ok");
        rig.engine.onCall = [this, call, ending](const std::string& made) {
            if (!made.starts_with(call)) return;
            rig.engine.loadStatus = ending.status;
            if (FAILED(ending.result)) rig.engine.results[made.substr(0, made.find(' '))] = ending.result;
        };
    }
    void letLoadsSucceed() {
        rig.engine.onCall = [](const std::string&) {};
        rig.engine.results.clear();
        rig.engine.loadStatus = 0;
        rig.engine.files.resize(1);
    }
    void selectGrain() {
        rig.click(PageRig::onBeat(0, 1));
        ASSERT_EQ(rig.page->selection().size(), 1);
        ASSERT_EQ(rig.page->binSelection().size(), 1);
    }
    bool nothingIsSelected() const {
        return rig.page->selection().isEmpty() && rig.page->binSelection().isEmpty();
    }
    /// The pad that a file which is dropped there is loaded onto; -1 for none.
    int targetOf(Point at) {
        drop(at, {"/in/a.wav"});
        for (const std::string& call : rig.changes())
            if (call.starts_with("LoadFileToPad ")) return std::stoi(call.substr(14));
        return -1;
    }

    PageRig rig;
};

TEST_F(FileDrops, OntoTheListFilesAreLoadedInTheirOrderAndTheLastIsCurrent) {
    open();
    selectGrain();
    drop(kOnList);
    EXPECT_EQ(rig.changes(), (Calls{"LoadFileToBin a.wav /in/a.wav", "LoadFileToBin b.wav /in/b.wav",
                                    "LoadFileToBin c.wav /in/c.wav", "SetRefreshRequest 1"}));
    EXPECT_EQ(rig.page->currentBinFile(), 3);
    EXPECT_TRUE(nothingIsSelected());
    EXPECT_EQ(rig.window.takeLog(), Calls{});
}

TEST_F(FileDrops, TheFilesOfTheListAreCountedFirst) {
    open();
    drop(kOnList, {"/in/a.wav"});
    const Calls calls = rig.calls();
    ASSERT_GE(calls.size(), 3u);
    EXPECT_EQ(Calls(calls.begin(), calls.begin() + 3),
              (Calls{"GetBinFileCount", "LoadFileToBin a.wav /in/a.wav", "SetRefreshRequest 1"}));
}

TEST_F(FileDrops, OntoAPadUndoTakesBackOnlyTheLastOfSeveralFiles) {
    open();
    selectGrain();
    drop(PageRig::onPadImage(5));
    EXPECT_EQ(rig.changes(), (Calls{"PushUndoState", "LoadFileToPad 5 a.wav /in/a.wav", "PushUndoState",
                                    "LoadFileToPad 5 b.wav /in/b.wav", "PushUndoState",
                                    "LoadFileToPad 5 c.wav /in/c.wav", "SetRefreshRequest 1"}));
    EXPECT_EQ(rig.page->currentPad(), 5);
    EXPECT_EQ(rig.page->currentBinFile(), 3);
    EXPECT_TRUE(nothingIsSelected());
}

TEST_F(FileDrops, BetweenTwoImagesThePadOfThatQuarterIsMeant) {
    open();
    // Quarters of the block are 89.25 wide from 139 and 58 high from 6.
    EXPECT_EQ(targetOf({300, 80}), 5);
    EXPECT_EQ(targetOf({315, 80}), 5);
    EXPECT_EQ(targetOf({316, 80}), 6);  // on its image
    EXPECT_EQ(targetOf({228, 61}), 0);
    EXPECT_EQ(targetOf({228, 62}), 5);  // on its image, though in another's quarter
    EXPECT_EQ(targetOf({317, 60}), 1);
    EXPECT_EQ(targetOf({318, 60}), 2);
    EXPECT_EQ(targetOf({495, 237}), 15);
    EXPECT_EQ(targetOf({139, 6}), 0);
}

TEST_F(FileDrops, InTheViewTheRowIsMeant) {
    open();
    EXPECT_EQ(targetOf(PageRig::inRow(9, 400)), 9);
    EXPECT_EQ(targetOf(PageRig::onName(12)), 12);
    EXPECT_EQ(targetOf({300, 521}), 15);  // below the last row
    EXPECT_EQ(targetOf({300, 527}), 15);
    EXPECT_EQ(targetOf({300, 528}), -1);
}

TEST_F(FileDrops, OnTheRulerThePointCountsAsTheFirstRowWithinARowsHeightOfThePlot) {
    open();
    EXPECT_EQ(targetOf({300, 352}), 0);
    EXPECT_EQ(targetOf({300, 360}), 0);
    EXPECT_EQ(targetOf({300, 351}), -1);
}

TEST_F(FileDrops, BesideAllTargetsNothingIsLoadedAndTheEffectIsACopyAllTheSame) {
    open();
    selectGrain();
    for (const Point at : {kNowhere, Point{300, 280}, Point{300, 351}}) {
        drop(at);
        EXPECT_EQ(rig.changes(), Calls{"SetRefreshRequest 1"});
        EXPECT_EQ(rig.page->selection().size(), 1);
    }
    const std::vector<std::string> paths{"/in/a.wav"};
    EXPECT_EQ(rig.page->drop(kNowhere, paths), DropEffect::copy);
    EXPECT_EQ(rig.page->drop(kOnList, paths), DropEffect::copy);
}

TEST_F(FileDrops, NoFilesOnATargetOnlyEndTheSelections) {
    for (const Point at : {kOnList, PageRig::onPadImage(5), PageRig::inRow(5, 20)}) {
        open();
        selectGrain();
        drop(at, {});
        EXPECT_EQ(rig.changes(), Calls{"SetRefreshRequest 1"});
        EXPECT_TRUE(nothingIsSelected());
        EXPECT_EQ(rig.page->currentPad(), 0);
        EXPECT_EQ(rig.page->currentBinFile(), 0);
    }
}

TEST_F(FileDrops, AFailureOfTheSecondFileKeepsTheFirstAndNeverTriesTheThird) {
    for (const Ending& ending : kFailures) {
        letLoadsSucceed();
        open();
        failAt("LoadFileToBin b.wav", ending);
        drop(kOnList);
        EXPECT_EQ(rig.changes(), (Calls{"LoadFileToBin a.wav /in/a.wav", "LoadFileToBin b.wav /in/b.wav",
                                        "SetRefreshRequest 1"}));
        EXPECT_EQ(rig.window.takeLog(), Calls{ending.message});
        EXPECT_EQ(rig.page->currentBinFile(), ending.isInBin ? 2 : 1);
    }
}

TEST_F(FileDrops, AFailureOnAPadIsTakenBackBeforeItsMessage) {
    for (const Ending& ending : kFailures) {
        letLoadsSucceed();
        open();
        failAt("LoadFileToPad 3 b.wav", ending);
        Calls before;
        rig.window.setWatcher([&] { before = rig.changes(); });
        drop(PageRig::onPadImage(3));
        EXPECT_EQ(before, (Calls{"PushUndoState", "LoadFileToPad 3 a.wav /in/a.wav", "PushUndoState",
                                 "LoadFileToPad 3 b.wav /in/b.wav", "Undo"}));
        EXPECT_EQ(rig.changes(), Calls{"SetRefreshRequest 1"});
        EXPECT_EQ(rig.window.takeLog(), Calls{ending.message});
        EXPECT_EQ(rig.page->currentBinFile(), ending.isInBin ? 2 : 1);
    }
}

TEST_F(FileDrops, AFileThatIsLoadedAllTheSameIsCurrentWhenItsMessageComes) {
    open();
    failAt("LoadFileToBin a.wav", kFailures[1]);
    int current = -2;
    rig.window.setWatcher([&] { current = rig.page->currentBinFile(); });
    drop(kOnList);
    EXPECT_EQ(current, 1);
}

TEST_F(FileDrops, APathThatTheEngineCannotTakeWholeIsNotLoadedAtAll) {
    open();
    const std::string folder = "/" + std::string(200, 'd') + "/";
    const std::string longest = std::string(259 - folder.size(), 'n');
    drop(kOnList, {folder + longest});
    EXPECT_EQ(rig.changes(),
              (Calls{"LoadFileToBin " + longest + " " + folder + longest, "SetRefreshRequest 1"}));
    rig.window.answer("ok");
    drop(kOnList, {folder + longest + "n"});
    EXPECT_EQ(rig.changes(), Calls{"SetRefreshRequest 1"});
    EXPECT_EQ(rig.window.takeLog(), Calls{kWrong});
}

TEST_F(FileDrops, NothingIsPaintedWhileFilesLoadAndTheNextPaintsRepairThePage) {
    open();
    rig.engine.pads[9].mute = true;
    const Bitmap before = rig.window.screen();
    failAt("LoadFileToPad 3 a.wav", kFailures[0]);
    int looks = 0;
    rig.window.setWatcher([&] {
        ++looks;
        rig.calls();
        // Choosing the pad has put its settings and the view out of date.
        EXPECT_TRUE(rig.window.paintRequested());
        rig.window.settle();
        EXPECT_EQ(rig.calls(), Calls{});
        EXPECT_EQ(rig.window.screen(), before);
    });
    drop(PageRig::onPadImage(3));
    EXPECT_EQ(looks, 1);
    // The ring is around the fourth pad now: 404, 4 to 494, 62.
    EXPECT_NE(before.at(404, 30), kPalette[8]);
    EXPECT_EQ(rig.window.screen().at(404, 30), kPalette[8]);
    EXPECT_EQ(rig.state(muteId(9)), 0);
    rig.window.tick();
    EXPECT_EQ(rig.state(muteId(9)), 1);
    EXPECT_EQ(rig.window.screen(), rig.page->screen());
}

TEST_F(FileDrops, WhatIsNotFilesHasNoEffectOnEnteringACopyOnMovesAndNoneWhenDropped) {
    open();
    selectGrain();
    rig.calls();
    EXPECT_EQ(rig.page->dragEnter(false), DropEffect::none);
    EXPECT_EQ(rig.page->dragOver(kOnList), DropEffect::copy);
    EXPECT_EQ(rig.page->dragOver(kNowhere), DropEffect::copy);
    EXPECT_EQ(rig.page->drop(kOnList, {}), DropEffect::none);
    EXPECT_EQ(rig.calls(), Calls{});
    EXPECT_EQ(rig.page->selection().size(), 1);
    // Painting goes on.
    rig.engine.pads[9].playing = true;
    const Bitmap before = rig.window.screen();
    rig.window.tick();
    EXPECT_NE(rig.window.screen(), before);
}

TEST_F(FileDrops, FilesHaveTheEffectOfACopyOnEnteringAndLeavingDoesNothing) {
    open();
    EXPECT_EQ(rig.page->dragEnter(true), DropEffect::copy);
    EXPECT_EQ(rig.page->dragOver(kOnList), DropEffect::copy);
    rig.page->dragLeave();
    EXPECT_EQ(rig.calls(), Calls{});
}

}  // namespace
}  // namespace marnoth::test::file_drops_test
