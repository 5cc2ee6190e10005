#include <gtest/gtest.h>

#include "editor/LateWindow.h"
#include "editor/files/LoadMessages.h"

/// The page in a window that doesn't wait for its user's answers: what happens while a question is open, when
/// the answer comes, and when it comes too late.
namespace marnoth::test::open_questions_test {
namespace {

const std::string kAskClear = "Are you sure you want to clear the contents of this project?";
const std::string kAskDelete =
    "Any grains sourced from this file will be deleted from the Pad Editor.  OK to proceed?";
const std::string kWaves = "Wave Files (*.wav)|*.wav||";

class OpenQuestions : public testing::Test {
protected:
    OpenQuestions() {
        engine.files.push_back({"old.wav", "/loops/old.wav", {ModelGrain{0, PageRig::kBeat}}});
        engine.pads[2].grains.push_back({0, PageRig::kBeat});
        engine.pads[2].loopLength = PageRig::kBeat;
        page = std::make_unique<CGrooveSamplerPropPage>(window);
        IUnknown* const object = &engine;
        page->bind({&object, 1});
        page->open();
        settle();
    }
    void settle() {
        page->paint();
        engine.take();
    }
    Control& control(int id) { return *page->controlOf(id); }
    int state(int id) { return control(id).shownState().value_or(-99); }
    void click(Point at) {
        page->leftDown(at, {});
        page->leftUp(at, {});
    }
    void click(int id) {
        const Rect place = control(id).place();
        click(Point{(place.left + place.right) / 2, (place.top + place.bottom) / 2});
    }
    Calls changes() { return engine.takeChanges(); }

    RecordingSampler engine;
    LateWindow window;
    std::unique_ptr<CGrooveSamplerPropPage> page;
};

TEST_F(OpenQuestions, NothingOfAClearHappensBeforeItsAnswerButTheTimerStands) {
    click(kClearProject);
    EXPECT_EQ(window.take(), Calls{kAskClear});
    EXPECT_EQ(changes(), Calls{});
    EXPECT_EQ(window.timerPeriod, 0);
    window.answer(PageAnswer::yes);
    EXPECT_EQ(changes(), (Calls{"ClearProject", "SetRefreshRequest 1"}));
    EXPECT_EQ(window.timerPeriod, 200);
}

TEST_F(OpenQuestions, ACancelledClearOnlyStartsTheTimer) {
    click(kClearProject);
    window.answer(PageAnswer::cancel);
    EXPECT_EQ(changes(), Calls{});
    EXPECT_EQ(window.timerPeriod, 200);
}

TEST_F(OpenQuestions, AChosenFileIsLoadedWhenItIsKnown) {
    click(kFirstOpen + 2);
    EXPECT_EQ(window.take(), Calls{kWaves});
    EXPECT_EQ(changes(), Calls{});
    EXPECT_EQ(state(kFirstOpen + 2), 1);
    window.answer("/loops/beat.wav");
    EXPECT_EQ(changes(), (Calls{"PushUndoState", "LoadFileToPad 2 beat.wav /loops/beat.wav",
                                "SetRefreshRequest 1", "SetRefreshRequest 1"}));
    EXPECT_EQ(state(kFirstOpen + 2), 0);
}

TEST_F(OpenQuestions, AnAnswerMayLeadToTheNextQuestion) {
    engine.loadStatus = 1;
    click(kLoadToBin);
    window.take();
    window.answer("/loops/beat.wav");
    EXPECT_EQ(changes(), Calls{"LoadFileToBin beat.wav /loops/beat.wav"});
    EXPECT_EQ(window.take(), Calls{"The Loop Bin is full.  If possible, delete one or more entries before "
                                   "loading additional files."});
    EXPECT_EQ(state(kLoadToBin), 1);
    window.answer(PageAnswer::ok);
    EXPECT_EQ(changes(), (Calls{"SetRefreshRequest 1", "SetRefreshRequest 1"}));
    EXPECT_EQ(state(kLoadToBin), 0);
}

TEST_F(OpenQuestions, WhatIsChosenInAMenuIsCarriedOutWithItsAnswer) {
    page->contextMenu(PageRig::onPadImage(5), {});
    EXPECT_EQ(window.take(), Calls{"menu"});
    window.answer(kLoopingCommand);
    EXPECT_EQ(changes(), (Calls{"SetPadLooping 5 1", "SetRefreshRequest 1"}));
}

TEST_F(OpenQuestions, WhileOneIsOpenThePageIgnoresWhatItsUserDoes) {
    click(PageRig::onBinRow(0));
    click(kDeleteFromBin);
    EXPECT_EQ(window.take(), Calls{kAskDelete});
    changes();
    click(PageRig::onPadImage(7));
    click(kClearProject);
    click(muteId(3));
    page->doubleClick(PageRig::onName(2), {});
    page->contextMenu(PageRig::onPadImage(5), {});
    page->wheel({148, 12}, WheelAxis::vertical, 1, {});
    page->character('x', {});
    EXPECT_FALSE(page->keyDown(kKeyDelete, {}));
    const std::vector<std::string> files{"/loops/beat.wav"};
    EXPECT_EQ(page->dragEnter(true), DropEffect::none);
    EXPECT_EQ(page->drop(PageRig::onPadImage(7), files), DropEffect::none);
    EXPECT_EQ(changes(), Calls{});
    EXPECT_EQ(window.take(), Calls{});
    EXPECT_EQ(page->currentPad(), 0);
    EXPECT_EQ(state(muteId(3)), 0);
    window.answer(PageAnswer::yes);
    EXPECT_EQ(changes(), (Calls{"RemoveBinFile 0", "SetRefreshRequest 1"}));
    click(PageRig::onPadImage(7));
    EXPECT_EQ(page->currentPad(), 7) << "and hears its user again";
}

TEST_F(OpenQuestions, TheTimerAndThePaintGoOn) {
    click(kLoadToBin);
    engine.SetRefreshRequest(1);
    engine.take();
    page->timer();
    page->paint();
    const Calls calls = engine.take();
    EXPECT_EQ(calls.front(), "GetRefreshRequest");
    EXPECT_EQ(std::ranges::count(calls, "GetPadPlaying 15"), 1);
    EXPECT_EQ(std::ranges::count(calls, "GetPadMute 15"), 1);
}

TEST_F(OpenQuestions, TheKeyboardThatTheQuestionTakesIsNotLost) {
    click(kLoadToBin);
    page->focusLost();
    window.answer(std::optional<std::string>());
    EXPECT_TRUE(page->hasFocus(control(kBinPlay)));
}

TEST_F(OpenQuestions, AQuestionTakesTheMouseFromWhoHasIt) {
    page->leftDown(PageRig::onPadImage(7), {});
    EXPECT_TRUE(window.captured);
    changes();
    page->contextMenu(PageRig::onPadImage(5), {});
    EXPECT_FALSE(window.captured);
    EXPECT_EQ(changes(), Calls{"StopPad 7"});
}

TEST_F(OpenQuestions, APageThatGoesTakesItsQuestionBackAndHearsNoAnswer) {
    click(kClearProject);
    page.reset();
    EXPECT_EQ(window.cancelled, 1);
    changes();
    window.answer(PageAnswer::yes);
    EXPECT_EQ(changes(), Calls{});
    EXPECT_EQ(window.timerPeriod, 0);
}

TEST_F(OpenQuestions, SoDoesAPageWithAFileOrAMenuOpen) {
    click(kFirstOpen + 2);
    page.reset();
    changes();
    window.answer("/loops/beat.wav");
    EXPECT_EQ(changes(), Calls{});
    page = std::make_unique<CGrooveSamplerPropPage>(window);
    page->open();
    page->contextMenu(PageRig::onPadImage(5), {});
    page.reset();
    window.answer(kClearPadCommand);
    EXPECT_EQ(window.cancelled, 2);
}

TEST_F(OpenQuestions, APageWithoutAnOpenQuestionTakesNoneBack) {
    click(kClearProject);
    window.answer(PageAnswer::no);
    page.reset();
    EXPECT_EQ(window.cancelled, 0);
}

TEST_F(OpenQuestions, OneThatWasAboutAnotherEngineIsCancelled) {
    click(kClearProject);
    RecordingSampler second;
    IUnknown* const object = &second;
    page->bind({&object, 1});
    EXPECT_EQ(window.cancelled, 1);
    EXPECT_EQ(window.timerPeriod, 200);
    changes();
    window.answer(PageAnswer::yes);
    EXPECT_EQ(changes(), Calls{});
    EXPECT_EQ(second.takeChanges(), Calls{});
    page.reset();
}

TEST_F(OpenQuestions, AnAnswerThatIsGivenTwiceCountsOnce) {
    click(kClearProject);
    const auto again = window.message;
    window.answer(PageAnswer::yes);
    changes();
    again(PageAnswer::yes);
    EXPECT_EQ(changes(), Calls{});
}

TEST_F(OpenQuestions, AfterAFailedDropNothingIsPaintedUntilItsMessageIsAnswered) {
    engine.loadStatus = 3;
    const std::vector<std::string> files{"/loops/a.wav", "/loops/b.wav"};
    EXPECT_EQ(page->drop(PageRig::onPadImage(7), files), DropEffect::copy);
    EXPECT_EQ(changes(), (Calls{"PushUndoState", "LoadFileToPad 7 a.wav /loops/a.wav", "Undo"}));
    ASSERT_EQ(window.take().size(), 1u);
    page->paint();
    EXPECT_EQ(engine.take(), Calls{});
    window.paintsWanted = 0;
    window.answer(PageAnswer::ok);
    EXPECT_EQ(changes(), Calls{"SetRefreshRequest 1"});
    EXPECT_GT(window.paintsWanted, 0);
    page->paint();
    EXPECT_NE(engine.take(), Calls{});
}

TEST_F(OpenQuestions, APageMayGoWhileTheMessageOfADropIsOpen) {
    engine.loadStatus = 3;
    const std::vector<std::string> files{"/loops/a.wav"};
    page->drop(PageRig::onPadImage(7), files);
    page.reset();
    changes();
    window.answer(PageAnswer::ok);
    EXPECT_EQ(changes(), Calls{});
}

TEST_F(OpenQuestions, AGrainThatIsGoneByTheAnswerEndsNothingButThat) {
    click(PageRig::onBinRow(0));
    click(kDeleteFromBin);
    engine.throwing = {"RemoveBinFile"};
    window.answer(PageAnswer::yes);
    engine.throwing.clear();
    click(PageRig::onPadImage(7));
    EXPECT_EQ(page->currentPad(), 7);
}

// The clipboard isn't a question: its user goes on working.

TEST_F(OpenQuestions, AClipboardThatIsHandedOverLaterIsPastedThen) {
    page->focusControl(control(kLowKey));
    EXPECT_TRUE(page->keyDown(kKeyV, {.control = true}));
    const std::string before = control(kLowKey).shownText().value();
    page->keyUp(kKeyV, {});
    window.clipboard("D3");
    EXPECT_NE(before, "D3");
    EXPECT_EQ(control(kLowKey).shownText(), "D3");
}

TEST_F(OpenQuestions, AnEditThatWasLeftMeanwhileGetsNothing) {
    page->focusControl(control(kLowKey));
    page->keyDown(kKeyV, {.control = true});
    page->focusControl(control(kHighKey));
    const std::string low = control(kLowKey).shownText().value();
    const std::string high = control(kHighKey).shownText().value();
    window.clipboard("D3");
    EXPECT_EQ(control(kLowKey).shownText(), low);
    EXPECT_EQ(control(kHighKey).shownText(), high);
}

TEST_F(OpenQuestions, APageThatIsGoneGetsNothing) {
    page->focusControl(control(kLowKey));
    page->keyDown(kKeyV, {.control = true});
    page.reset();
    changes();
    window.clipboard("D3");
    EXPECT_EQ(changes(), Calls{});
}

}  // namespace
}  // namespace marnoth::test::open_questions_test
