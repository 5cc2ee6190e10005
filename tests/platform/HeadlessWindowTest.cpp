#include <gtest/gtest.h>

#include "platform/drawing/HeadlessWindow.h"
#include "platform/text/Text.h"

namespace marnoth::test::headless_window_test {
namespace {

using Lines = std::vector<std::string>;

/// Writes down what the window tells it.
class ListeningPage final : public PageEvents {
public:
    explicit ListeningPage(HeadlessWindow& window) { window.setPage(this); }
    Lines heard;

    void paint() override { heard.push_back("paint"); }
    void timer() override { heard.push_back("timer"); }
    void leftDown(Point at, Modifiers) override { point("down", at); }
    void leftUp(Point at, Modifiers) override { point("up", at); }
    void doubleClick(Point at, Modifiers) override { point("double", at); }
    void mouseMove(Point at, Modifiers) override { point("move", at); }
    void rightDown(Point at, Modifiers) override { point("right", at); }
    void contextMenu(Point at, Modifiers) override { point("menu", at); }
    void relativeMove(Point distance, Modifiers) override { point("by", distance); }
    void wheel(Point at, WheelAxis axis, int steps, Modifiers) override {
        point((axis == WheelAxis::vertical ? "wheel " : "sideways ") + std::to_string(steps) + " at", at);
    }
    bool keyDown(int key, Modifiers held) override {
        const std::string with = std::string(held.shift ? "shift " : "") + (held.control ? "ctrl " : "");
        heard.push_back("key " + with + std::to_string(key));
        return key == kKeyDelete;
    }
    void keyUp(int key, Modifiers) override { heard.push_back("up " + std::to_string(key)); }
    void character(char32_t character, Modifiers) override {
        heard.push_back("U+" + std::to_string(static_cast<unsigned>(character)));
    }
    void focusLost() override {}
    void captureLost() override { heard.push_back("capture lost"); }
    DropEffect dragEnter(bool hasFiles) override {
        heard.push_back(hasFiles ? "enter with files" : "enter");
        return DropEffect::copy;
    }
    DropEffect dragOver(Point at) override {
        point("over", at);
        return DropEffect::copy;
    }
    void dragLeave() override { heard.push_back("leave"); }
    DropEffect drop(Point at, std::optional<std::span<const std::string>> paths) override {
        point("drop", at);
        if (paths) heard.insert(heard.end(), paths->begin(), paths->end());
        return DropEffect::copy;
    }

private:
    void point(const std::string& what, Point at) {
        heard.push_back(what + " " + std::to_string(at.x) + "," + std::to_string(at.y));
    }
};

TEST(HeadlessWindow, AWholeDoubleClickHasFourEvents) {
    HeadlessWindow window;
    ListeningPage page(window);
    window.doubleClick({3, 4});
    EXPECT_EQ(page.heard, (Lines{"down 3,4", "up 3,4", "double 3,4", "up 3,4"}));
    EXPECT_EQ(window.pointer(), (Point{3, 4}));
}

TEST(HeadlessWindow, TheContextMenuFollowsTheRightButton) {
    HeadlessWindow window;
    ListeningPage page(window);
    window.rightClick({240, 30});
    EXPECT_EQ(page.heard, (Lines{"right 240,30", "menu 240,30"}));
}

TEST(HeadlessWindow, CoordinatesAreTakenAsTheyAreThoughThePointerIsConfined) {
    HeadlessWindow window;
    ListeningPage page(window);
    window.confinePointer(Rect{0, 0, 10, 10});
    window.move({50, -7});
    EXPECT_EQ(page.heard, Lines{"move 50,-7"});
    EXPECT_EQ(window.pointer(), (Point{50, -7}));
    EXPECT_EQ(window.confinement(), (Rect{0, 0, 10, 10}));
}

TEST(HeadlessWindow, CharactersComeBetweenTheirKeysAndSignsAreNoEditingKeys) {
    HeadlessWindow window;
    ListeningPage page(window);
    window.type("d#.\xC3\xA9");
    EXPECT_EQ(page.heard, (Lines{"key 68", "U+100", "up 68", "key 51", "U+35", "up 51", "key 190", "U+46",
                                 "up 190", "key 0", "U+233", "up 0"}));
}

TEST(HeadlessWindow, PaintsOnceAfterAnEventThatAskedForIt) {
    HeadlessWindow window;
    ListeningPage page(window);
    window.requestPaint();
    window.requestPaint();
    window.press({1, 1});
    window.release({1, 1});
    EXPECT_EQ(page.heard, (Lines{"down 1,1", "paint", "up 1,1"}));
    EXPECT_FALSE(window.paintRequested());
}

TEST(HeadlessWindow, ATimerThatStandsDoesNotTick) {
    HeadlessWindow window;
    ListeningPage page(window);
    window.tick();
    window.setTimer(200);
    window.tick();
    window.setTimer(0);
    window.tick();
    EXPECT_EQ(page.heard, Lines{"timer"});
}

TEST(HeadlessWindow, KeysAreHeldUntilTheyAreLetGoAndEachEventSaysWhichAre) {
    HeadlessWindow window;
    ListeningPage page(window);
    window.hold(kKeyShift);
    window.key(kKeyZ);
    window.hold(kKeyControl);
    window.key(kKeyZ);
    window.let(kKeyShift);
    window.key(kKeyZ);
    EXPECT_EQ(page.heard, (Lines{"key shift 16", "key shift 90", "up 90", "key shift ctrl 17",
                                 "key shift ctrl 90", "up 90", "up 16", "key ctrl 90", "up 90"}));
}

TEST(HeadlessWindow, SaysWhetherThePageActedOnAKey) {
    HeadlessWindow window;
    EXPECT_FALSE(window.key(kKeyDelete)) << "there is no page";
    ListeningPage page(window);
    EXPECT_TRUE(window.key(kKeyDelete));
    EXPECT_FALSE(window.key(kKeySpace));
}

TEST(HeadlessWindow, TheWheelTurnsWhereThePointerIs) {
    HeadlessWindow window;
    ListeningPage page(window);
    window.wheel({7, 8}, WheelAxis::vertical, -2);
    window.wheel({9, 8}, WheelAxis::horizontal, 1);
    EXPECT_EQ(page.heard, (Lines{"wheel -2 at 7,8", "sideways 1 at 9,8"}));
    EXPECT_EQ(window.pointer(), (Point{9, 8}));
}

TEST(HeadlessWindow, InARelativeDragMovesAreDistancesFromWhereThePointerStays) {
    HeadlessWindow window;
    ListeningPage page(window);
    window.press({50, 60});
    window.beginRelativeDrag(PageCursor::none);
    EXPECT_TRUE(window.hasCapture());
    EXPECT_EQ(window.cursor(), PageCursor::none);
    window.move({52, 57});
    window.move({50, 61});
    EXPECT_EQ(window.pointer(), (Point{50, 60}));
    window.endRelativeDrag();
    EXPECT_FALSE(window.hasCapture());
    window.move({1, 2});
    EXPECT_EQ(page.heard, (Lines{"down 50,60", "by 2,-3", "by 0,1", "move 1,2"}));
}

TEST(HeadlessWindow, WhatTakesTheMouseEndsARelativeDrag) {
    HeadlessWindow window;
    ListeningPage page(window);
    window.beginRelativeDrag(PageCursor::none);
    window.loseCapture();
    window.move({1, 2});
    EXPECT_EQ(page.heard, (Lines{"capture lost", "move 1,2"}));
    EXPECT_FALSE(window.hasCapture());
}

/// Asks a window, and takes the answers that are there when the call returns.
struct Asking {
    HeadlessWindow& window;

    std::optional<PageAnswer> message(std::string_view text, MessageKind kind) {
        std::optional<PageAnswer> got;
        window.askMessage(text, kind, [&](PageAnswer answer) { got = answer; });
        return got;
    }
    std::optional<std::string> file(std::string_view filter, FileKind kind) {
        std::optional<std::string> got = "(no answer)";
        window.askFile(filter, kind, [&](std::optional<std::string> answer) { got = std::move(answer); });
        return got;
    }
    int menu(std::span<const MenuItem> items) {
        int got = -1;
        window.askMenu({0, 0}, items, [&](int answer) { got = answer; });
        return got;
    }
};

TEST(HeadlessWindow, AQuestionWithoutAnAnswerIsCancelled) {
    HeadlessWindow window;
    Asking asking{window};
    const std::vector<MenuItem> items{{1, "One", false}};
    EXPECT_EQ(asking.message("Sure?", MessageKind::yesNo), PageAnswer::cancel);
    EXPECT_EQ(asking.file("Wave Files (*.wav)|*.wav||", FileKind::open), std::nullopt);
    EXPECT_EQ(asking.menu(items), 0);
    EXPECT_EQ(window.takeLog(),
              (Lines{"? message \"Sure?\" -> cancel", "? file open \"Wave Files (*.wav)|*.wav||\" -> cancel",
                     "? menu 1:One -> cancel"}));
    EXPECT_EQ(window.takeLog(), Lines{});
}

TEST(HeadlessWindow, AnswersAreGivenInTheirOrder) {
    HeadlessWindow window;
    Asking asking{window};
    for (const char* word : {"yes", "no", "ok", "32771"}) window.answer(word);
    EXPECT_EQ(asking.message("A \"b\"", MessageKind::yesNo), PageAnswer::yes);
    EXPECT_EQ(asking.message("C", MessageKind::yesNo), PageAnswer::no);
    EXPECT_EQ(asking.message("D", MessageKind::note), PageAnswer::ok);
    const std::vector<MenuItem> items{{32770, "Open Audio File", false}, {32771, "Looping", true}};
    EXPECT_EQ(asking.menu(items), 32771);
    EXPECT_EQ(window.takeLog(),
              (Lines{"? message \"A \\\"b\\\"\" -> yes", "? message \"C\" -> no", "? message \"D\" -> ok",
                     "? menu 32770:Open Audio File 32771:Looping:checked -> 32771"}));
}

TEST(HeadlessWindow, AQuestionInAnAnswerIsLoggedBehindTheFirst) {
    HeadlessWindow window;
    window.answer("yes");
    window.askMessage("A", MessageKind::yesNo,
                      [&](PageAnswer) { window.askMessage("B", MessageKind::note, [](PageAnswer) {}); });
    EXPECT_EQ(window.takeLog(), (Lines{"? message \"A\" -> yes", "? message \"B\" -> cancel"}));
}

TEST(HeadlessWindow, TheWatcherLooksAroundBeforeEachAnswer) {
    HeadlessWindow window;
    ListeningPage page(window);
    Asking asking{window};
    int logged = -1;
    window.setWatcher([&] {
        logged = static_cast<int>(window.takeLog().size());
        window.settle();
    });
    window.requestPaint();
    window.answer("yes");
    EXPECT_EQ(asking.message("Sure?", MessageKind::yesNo), PageAnswer::yes);
    EXPECT_EQ(logged, 0);
    EXPECT_EQ(page.heard, Lines{"paint"});
    asking.file("Wave Files (*.wav)|*.wav||", FileKind::open);
    EXPECT_EQ(logged, 1);
}

TEST(HeadlessWindow, AQuestionThatIsLeftOpenWaitsForItsAnswer) {
    HeadlessWindow window;
    ListeningPage page(window);
    Lines got;
    const auto ask = [&](const char* text) {
        window.askMessage(text, MessageKind::yesNo, [&, text](PageAnswer answer) {
            got.push_back(std::string(text) + (answer == PageAnswer::yes ? " yes" : " else"));
            window.requestPaint();
        });
    };
    window.answer("yes");
    window.leaveOpen();
    ask("A");
    EXPECT_EQ(window.openQuestion(), nullptr);
    ask("B");
    ASSERT_NE(window.openQuestion(), nullptr);
    EXPECT_EQ(window.openQuestion()->text, "B");
    EXPECT_EQ(window.openQuestion()->buttons, (Lines{"Yes", "No"}));
    EXPECT_EQ(got, Lines{"A yes"});
    EXPECT_EQ(window.takeLog(), Lines{"? message \"A\" -> yes"});
    window.settle();
    page.heard.clear();
    window.answer("yes");
    EXPECT_EQ(got, (Lines{"A yes", "B yes"}));
    EXPECT_EQ(page.heard, Lines{"paint"});
    EXPECT_EQ(window.openQuestion(), nullptr);
    EXPECT_EQ(window.takeLog(), Lines{"? message \"B\" -> yes"});
}

TEST(HeadlessWindow, AnOpenQuestionTellsWhatAUserSees) {
    HeadlessWindow window;
    window.leaveOpen();
    window.askMessage("So it is.", MessageKind::note, [](PageAnswer) {});
    EXPECT_EQ(window.openQuestion()->buttons, Lines{"OK"});
    window.answer("ok");
    window.leaveOpen();
    std::optional<std::string> file;
    window.askFile("Mrn Files (*.mrn)|*.mrn||", FileKind::save,
                   [&](std::optional<std::string> path) { file = std::move(path); });
    EXPECT_EQ(window.openQuestion()->text, "Mrn Files (*.mrn)");
    EXPECT_EQ(window.openQuestion()->buttons, (Lines{"Save", "Cancel"}));
    window.answer("a.mrn");
    EXPECT_EQ(file, "a.mrn");
    window.leaveOpen();
    int chosen = -1;
    const std::vector<MenuItem> items{{1, "One", false}, {2, "Two", true}};
    window.askMenu({3, 4}, items, [&](int id) { chosen = id; });
    EXPECT_EQ(window.openQuestion()->at, (Point{3, 4}));
    ASSERT_EQ(window.openQuestion()->items.size(), 2u);
    EXPECT_TRUE(window.openQuestion()->items[1].checked);
    window.answer("2");
    EXPECT_EQ(chosen, 2);
}

TEST(HeadlessWindow, AnOpenQuestionThatIsTakenBackIsCancelledInTheLogAlone) {
    HeadlessWindow window;
    bool answered = false;
    window.leaveOpen();
    window.askMessage("A", MessageKind::yesNo, [&](PageAnswer) { answered = true; });
    window.cancelQuestion();
    EXPECT_EQ(window.openQuestion(), nullptr);
    EXPECT_FALSE(answered);
    EXPECT_EQ(window.takeLog(), Lines{"? message \"A\" -> cancel"});
    window.cancelQuestion();
    EXPECT_EQ(window.takeLog(), Lines{});
}

TEST(HeadlessWindow, AMenuGivesNothingThatIsNotInIt) {
    HeadlessWindow window;
    Asking asking{window};
    const std::vector<MenuItem> items{{1, "One", false}};
    window.answer("2");
    EXPECT_EQ(asking.menu(items), 0);
    window.answer("1x");
    EXPECT_EQ(asking.menu(items), 0);
}

TEST(HeadlessWindow, FilesCountFromItsFolderAndTheLogRepeatsTheWord) {
    HeadlessWindow window;
    Asking asking{window};
    window.setFolder("songs");
    window.answer("take 1.mrn");
    const auto file = asking.file("Mrn Files (*.mrn)|*.mrn||", FileKind::save);
    ASSERT_TRUE(file);
    EXPECT_EQ(pathFromWide(wideFromUtf8(*file)), std::filesystem::path("songs") / "take 1.mrn");
    EXPECT_EQ(window.takeLog(), Lines{"? file save \"Mrn Files (*.mrn)|*.mrn||\" -> \"take 1.mrn\""});
}

TEST(HeadlessWindow, WithoutFontsItHasNoFace) {
    HeadlessWindow window;
    std::string error;
    EXPECT_EQ(window.openFont("Arial", 12, error), nullptr);
    EXPECT_NE(error, "");
}

TEST(HeadlessWindow, TheScreenTakesOverOnlyWhatChanged) {
    HeadlessWindow window;
    Bitmap page(4, 4, {1, 1, 1});
    window.present(page, page.bounds());
    EXPECT_EQ(window.screen(), page);
    page = Bitmap(4, 4, {2, 2, 2});
    window.present(page, {1, 1, 3, 9});
    EXPECT_EQ(window.screen().at(1, 1), (Color{2, 2, 2}));
    EXPECT_EQ(window.screen().at(2, 3), (Color{2, 2, 2}));
    EXPECT_EQ(window.screen().at(3, 1), (Color{1, 1, 1}));
    EXPECT_EQ(window.screen().at(1, 0), (Color{1, 1, 1}));
}

TEST(HeadlessWindow, RemembersWhatThePageWanted) {
    HeadlessWindow window;
    window.setCapture();
    EXPECT_TRUE(window.hasCapture());
    window.releaseCapture();
    EXPECT_FALSE(window.hasCapture());
    window.setCursor(PageCursor::dragCopy);
    EXPECT_EQ(window.cursor(), PageCursor::dragCopy);
    window.setClipboardText("C5");
    EXPECT_EQ(window.clipboardText(), "C5");
    window.showHelp();
    EXPECT_EQ(window.helpShown(), 1);
}

TEST(HeadlessWindow, FilesAreDroppedWhereThePointerIs) {
    HeadlessWindow window;
    ListeningPage page(window);
    const Lines files{"a.wav", "b.wav"};
    window.drop({5, 6}, files);
    EXPECT_EQ(page.heard, (Lines{"enter with files", "over 5,6", "drop 5,6", "a.wav", "b.wav"}));
    EXPECT_EQ(window.pointer(), (Point{5, 6}));
}

}  // namespace
}  // namespace marnoth::test::headless_window_test
