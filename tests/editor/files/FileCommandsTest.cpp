#include <gtest/gtest.h>

#include "editor/PageRig.h"
#include "editor/files/LoadMessages.h"

/// The commands that ask for a file: audio files into the Loop Bin and onto pads, and projects.
namespace marnoth::test::file_commands_test {
namespace {

const std::string kAskWave = "? file open \"Wave Files (*.wav)|*.wav||\" -> ";
const std::string kAskProject = "? file open \"Mrn Files (*.mrn)|*.mrn||\" -> ";
const std::string kAskSave = "? file save \"Mrn Files (*.mrn)|*.mrn||\" -> ";
const std::string kAskClear =
    "? message \"Are you sure you want to clear the contents of this project?\" -> ";

/// Both requests come last: the file command's and that of the button.
const Calls kRequests{"SetRefreshRequest 1", "SetRefreshRequest 1"};

/// How a load ends, and what is current then; one file was in the bin before.
struct Ending {
    HRESULT result;
    std::uint32_t status;
    std::string message;
    int currentFile;
};
const Ending kFailures[] = {{S_OK, 1, kFull, -1},    {S_OK, 2, kPatch, 1},   {S_OK, 3, kWrong, -1},
                            {E_FAIL, 0, kWrong, -1}, {E_FAIL, 1, kFull, -1}, {S_OK, 0x80000000u, kWrong, -1}};

class FileCommands : public testing::Test {
protected:
    FileCommands() {
        rig.addFile("old.wav", 2);
        rig.fillPad(0, 2);
    }
    void open() {
        rig.open();
        rig.window.setWatcher([this] { atQuestion.push_back(rig.calls()); });
    }
    /// Selects the pad's second grain, which makes its file current.
    void selectGrain() {
        rig.click(PageRig::onBeat(0, 1));
        ASSERT_EQ(rig.page->selection().size(), 1);
        ASSERT_EQ(rig.page->binSelection().size(), 1);
        ASSERT_EQ(rig.page->currentBinFile(), 0);
        rig.calls();
    }
    /// A click on a control whose questions are answered so.
    void click(int id, std::initializer_list<const char*> answers) {
        for (const char* const answer : answers) rig.window.answer(answer);
        atQuestion.clear();
        rig.calls();
        rig.click(rig.on(id));
    }
    void prepare(const Ending& ending, const std::string& operation) {
        rig.engine.loadStatus = ending.status;
        if (FAILED(ending.result)) rig.engine.results[operation] = ending.result;
    }
    /// What the page did last, up to its requests for a refresh; what it read to paint comes behind.
    Calls lastCalls() {
        Calls calls = rig.calls();
        while (!calls.empty() && calls.back() != "SetRefreshRequest 1") calls.pop_back();
        return calls;
    }
    bool keyboardIsAtPlay() { return rig.page->hasFocus(rig.control(kBinPlay)); }

    PageRig rig;
    std::vector<Calls> atQuestion;  ///< for each question: what was called before
};

TEST_F(FileCommands, AFileForAPadIsLoadedAfterAnUndoStateAndBecomesCurrent) {
    open();
    click(kFirstOpen + 2, {"beat.wav"});
    EXPECT_EQ(rig.window.takeLog(), Calls{kAskWave + "beat.wav"});
    EXPECT_EQ(lastCalls(), (Calls{"PushUndoState", "LoadFileToPad 2 beat.wav beat.wav", "GetPadLooping 2",
                                  "GetPadSynced 2", "SetRefreshRequest 1", "SetRefreshRequest 1"}));
    EXPECT_EQ(rig.page->currentPad(), 2);
    EXPECT_EQ(rig.page->currentBinFile(), 1);
    EXPECT_EQ(rig.state(kFirstOpen + 2), 0);
    EXPECT_TRUE(keyboardIsAtPlay());
}

TEST_F(FileCommands, TheLoopTogglesOfThePadFollowTheLoad) {
    open();
    rig.engine.onCall = [this](const std::string& call) {
        if (call.starts_with("LoadFileToPad")) rig.engine.pads[4].looping = rig.engine.pads[4].synced = true;
    };
    click(kFirstOpen + 4, {"beat.wav"});
    EXPECT_EQ(rig.state(kFirstLooping + 4), 1);
    EXPECT_EQ(rig.state(kFirstSynced + 4), 1);
}

TEST_F(FileCommands, AFailureOnAPadIsTakenBackBeforeTheMessage) {
    for (const Ending& ending : kFailures) {
        rig.engine.results.clear();
        rig.engine.files.resize(1);
        open();
        prepare(ending, "LoadFileToPad");
        click(kFirstOpen + 15, {"beat.wav", "ok"});
        EXPECT_EQ(rig.window.takeLog(), (Calls{kAskWave + "beat.wav", ending.message}));
        ASSERT_EQ(atQuestion.size(), 2u);
        EXPECT_EQ(atQuestion[1], (Calls{"PushUndoState", "LoadFileToPad 15 beat.wav beat.wav", "Undo"}));
        EXPECT_EQ(lastCalls(), (Calls{"GetPadLooping 15", "GetPadSynced 15", "SetRefreshRequest 1",
                                      "SetRefreshRequest 1"}));
        EXPECT_EQ(rig.page->currentBinFile(), ending.currentFile);
        EXPECT_TRUE(keyboardIsAtPlay());
    }
}

TEST_F(FileCommands, AFileForTheLoopBinNeedsNoUndoStateAndBecomesCurrent) {
    open();
    rig.page->SelectPad(3);
    click(kLoadToBin, {"beat.wav"});
    EXPECT_EQ(rig.window.takeLog(), Calls{kAskWave + "beat.wav"});
    EXPECT_EQ(atQuestion, std::vector<Calls>{Calls{}});
    EXPECT_EQ(lastCalls(),
              (Calls{"LoadFileToBin beat.wav beat.wav", "SetRefreshRequest 1", "SetRefreshRequest 1"}));
    EXPECT_EQ(rig.page->currentPad(), 3);
    EXPECT_EQ(rig.page->currentBinFile(), 1);
    EXPECT_EQ(rig.state(kLoadToBin), 0);
    EXPECT_TRUE(keyboardIsAtPlay());
}

TEST_F(FileCommands, AFailureInTheLoopBinBringsItsMessageAlone) {
    for (const Ending& ending : kFailures) {
        rig.engine.results.clear();
        rig.engine.files.resize(1);
        open();
        prepare(ending, "LoadFileToBin");
        click(kLoadToBin, {"beat.wav", "ok"});
        EXPECT_EQ(rig.window.takeLog(), (Calls{kAskWave + "beat.wav", ending.message}));
        ASSERT_EQ(atQuestion.size(), 2u);
        EXPECT_EQ(atQuestion[1], Calls{"LoadFileToBin beat.wav beat.wav"});
        EXPECT_EQ(lastCalls(), kRequests);
        EXPECT_EQ(rig.page->currentBinFile(), ending.currentFile);
        EXPECT_EQ(rig.state(kLoadToBin), 0);
    }
}

TEST_F(FileCommands, AConfirmedFileEndsTheSelections) {
    open();
    selectGrain();
    rig.engine.loadStatus = 1;
    click(kLoadToBin, {"beat.wav", "ok"});
    EXPECT_TRUE(rig.page->selection().isEmpty());
    EXPECT_TRUE(rig.page->binSelection().isEmpty());
    EXPECT_EQ(rig.page->currentBinFile(), -1);
}

TEST_F(FileCommands, ACancelledFileLeavesEverythingAndIsStillFollowedByARefresh) {
    open();
    selectGrain();
    for (const int id : {+kLoadToBin, +kFirstOpen}) {
        click(id, {"cancel"});
        EXPECT_EQ(rig.window.takeLog(), Calls{kAskWave + "cancel"});
        EXPECT_EQ(rig.changes(), kRequests);
        EXPECT_EQ(rig.page->selection().size(), 1);
        EXPECT_EQ(rig.page->currentBinFile(), 0);
        EXPECT_EQ(rig.state(id), 0);
        EXPECT_TRUE(keyboardIsAtPlay());
    }
}

TEST_F(FileCommands, AProjectIsOpenedFromPadOneAndNoFile) {
    open();
    selectGrain();
    rig.page->SelectPad(9);
    rig.window.setWatcher([this] {
        EXPECT_EQ(rig.page->currentPad(), 0);
        EXPECT_EQ(rig.page->currentBinFile(), -1);
        EXPECT_EQ(rig.changes(), Calls{});
    });
    click(kOpenProject, {"song.mrn"});
    EXPECT_EQ(rig.window.takeLog(), Calls{kAskProject + "song.mrn"});
    EXPECT_EQ(rig.changes(), (Calls{"LoadProject song.mrn", "SetRefreshRequest 1", "SetRefreshRequest 1"}));
    EXPECT_TRUE(rig.page->selection().isEmpty());
    EXPECT_TRUE(rig.page->binSelection().isEmpty());
    EXPECT_TRUE(keyboardIsAtPlay());
}

TEST_F(FileCommands, OpeningAProjectLeavesItsOwnToggleAndLiftsThatOfTheLoopBin) {
    open();
    for (const int stays : {1, 0, 1, 0}) {
        dynamic_cast<CBitmapToggleCtrl&>(rig.control(kLoadToBin)).setDown(true);
        click(kOpenProject, {"song.mrn"});
        EXPECT_EQ(rig.state(kOpenProject), stays);
        EXPECT_EQ(rig.state(kLoadToBin), 0);
    }
}

TEST_F(FileCommands, AProjectIsSavedAndTheToggleGoesUp) {
    open();
    rig.page->SelectPad(9);
    click(kSaveProject, {"song.mrn"});
    EXPECT_EQ(rig.window.takeLog(), Calls{kAskSave + "song.mrn"});
    EXPECT_EQ(rig.changes(), (Calls{"SaveProject 0 song.mrn", "SetRefreshRequest 1", "SetRefreshRequest 1"}));
    EXPECT_EQ(rig.page->currentPad(), 0);
    EXPECT_EQ(rig.state(kSaveProject), 0);
    EXPECT_TRUE(keyboardIsAtPlay());
}

TEST_F(FileCommands, AProjectThatCannotBeSavedOrLoadedIsToldOf) {
    open();
    rig.engine.results = {{"SaveProject", E_FAIL}, {"LoadProject", E_FAIL}};
    click(kSaveProject, {"song.mrn", "ok"});
    EXPECT_EQ(rig.window.takeLog(),
              (Calls{kAskSave + "song.mrn", "? message \"Error saving file!  Save aborted!\" -> ok"}));
    EXPECT_EQ(rig.changes(), kRequests);
    ASSERT_EQ(atQuestion.size(), 2u);
    EXPECT_EQ(atQuestion[1], Calls{"SaveProject 0 song.mrn"});
    click(kOpenProject, {"song.mrn", "ok"});
    EXPECT_EQ(rig.window.takeLog(),
              (Calls{kAskProject + "song.mrn",
                     "? message \"Error loading file!  The file may be corrupted.\" -> ok"}));
    EXPECT_EQ(rig.changes(), kRequests);
    ASSERT_EQ(atQuestion.size(), 2u);
    EXPECT_EQ(atQuestion[1], Calls{"LoadProject song.mrn"});
}

TEST_F(FileCommands, AShellTellsWhyAProjectIsntLoadedAndAsksWhatToLoadInstead) {
    open();
    std::vector<std::string> asked;
    rig.page->adviseOnLoads([&](const std::string& path) {
        asked.push_back(path);
        return path == "song.mrn" ? LoadAdvice{"It is broken.  Load song.mrn.bak?", "song.mrn.bak"}
                                  : LoadAdvice{"That is broken too.", ""};
    });
    rig.engine.results = {{"SaveProject", E_FAIL}, {"LoadProject", E_FAIL}};
    const std::string question = "? message \"It is broken.  Load song.mrn.bak?\" -> ";
    const Calls requests{"SetRefreshRequest 1", "SetRefreshRequest 1"};
    click(kOpenProject, {"song.mrn", "no"});
    EXPECT_EQ(rig.window.takeLog(), (Calls{kAskProject + "song.mrn", question + "no"}));
    EXPECT_EQ(atQuestion.at(1), Calls{"LoadProject song.mrn"});
    EXPECT_EQ(rig.changes(), requests);
    click(kOpenProject, {"song.mrn", "yes", "ok"});
    EXPECT_EQ(rig.window.takeLog(),
              (Calls{kAskProject + "song.mrn", question + "yes", "? message \"That is broken too.\" -> ok"}));
    EXPECT_EQ(atQuestion.at(2), Calls{"LoadProject song.mrn.bak"});
    EXPECT_EQ(rig.changes(), requests);
    EXPECT_EQ(asked, (Calls{"song.mrn", "song.mrn", "song.mrn.bak"}));
    click(kSaveProject, {"song.mrn", "ok"});
    EXPECT_EQ(asked.size(), 3u) << "a save is none of its affairs";
}

TEST_F(FileCommands, AProjectThatAShellRefusesBeforehandIsntLoaded) {
    open();
    rig.page->checkLoads([](const std::string& path) {
        return path == "song.mrn" ? std::optional(LoadAdvice{"It is broken.  Load another?", "other.mrn"})
                                  : std::nullopt;
    });
    const std::string question = "? message \"It is broken.  Load another?\" -> ";
    click(kOpenProject, {"song.mrn", "no"});
    EXPECT_EQ(rig.window.takeLog(), (Calls{kAskProject + "song.mrn", question + "no"}));
    EXPECT_EQ(rig.changes(), kRequests);
    click(kOpenProject, {"song.mrn", "yes"});
    EXPECT_EQ(rig.window.takeLog(), (Calls{kAskProject + "song.mrn", question + "yes"}));
    EXPECT_EQ(lastCalls(), (Calls{"LoadProject other.mrn", kRequests[0], kRequests[1]}));
    click(kSaveProject, {"song.mrn"});
    EXPECT_EQ(lastCalls(), (Calls{"SaveProject 0 song.mrn", kRequests[0], kRequests[1]}))
        << "a save is none of its affairs";
}

TEST_F(FileCommands, ACancelledProjectStillEndsAtPadOneWithoutAFile) {
    open();
    selectGrain();
    for (const int id : {+kOpenProject, +kSaveProject}) {
        rig.page->SelectPad(5);
        click(id, {"cancel"});
        EXPECT_EQ(rig.changes(), kRequests);
        EXPECT_EQ(rig.page->currentPad(), 0);
        EXPECT_EQ(rig.page->currentBinFile(), -1);
        EXPECT_EQ(rig.page->selection().size(), 1);
        EXPECT_TRUE(keyboardIsAtPlay());
    }
}

TEST_F(FileCommands, AProjectIsClearedAfterAYesWhileTheTimerStands) {
    open();
    selectGrain();
    rig.page->SelectPad(9);
    int period = -1;
    rig.window.setWatcher([&] {
        period = rig.window.timerPeriod();
        EXPECT_EQ(rig.page->currentPad(), 9);
        EXPECT_EQ(rig.changes(), Calls{});
    });
    click(kClearProject, {"yes"});
    EXPECT_EQ(rig.window.takeLog(), Calls{kAskClear + "yes"});
    EXPECT_EQ(period, 0);
    EXPECT_EQ(rig.changes(), (Calls{"ClearProject", "SetRefreshRequest 1"}));
    EXPECT_EQ(rig.page->currentPad(), 0);
    EXPECT_EQ(rig.page->currentBinFile(), -1);
    EXPECT_TRUE(rig.page->selection().isEmpty());
    EXPECT_TRUE(rig.page->binSelection().isEmpty());
    EXPECT_EQ(rig.window.timerPeriod(), 200);
}

TEST_F(FileCommands, ANoLeavesTheProjectAndTheTimerGoesOn) {
    open();
    selectGrain();
    click(kClearProject, {"no"});
    EXPECT_EQ(rig.window.takeLog(), Calls{kAskClear + "no"});
    EXPECT_EQ(rig.changes(), Calls{});
    EXPECT_EQ(rig.page->currentBinFile(), 0);
    EXPECT_EQ(rig.page->selection().size(), 1);
    EXPECT_EQ(rig.window.timerPeriod(), 200);
}

TEST_F(FileCommands, NamesReachTheEngineWithTheirBlanksAndTheirEnding) {
    open();
    click(kLoadToBin, {"My Loop 01.wave.WAV"});
    EXPECT_EQ(lastCalls().front(), "LoadFileToBin My Loop 01.wave.WAV My Loop 01.wave.WAV");
}

}  // namespace
}  // namespace marnoth::test::file_commands_test
