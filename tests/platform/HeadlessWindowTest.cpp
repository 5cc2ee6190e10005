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
    void leftDown(Point at) override { point("down", at); }
    void leftUp(Point at) override { point("up", at); }
    void doubleClick(Point at) override { point("double", at); }
    void mouseMove(Point at) override { point("move", at); }
    void rightDown(Point at) override { point("right", at); }
    void contextMenu(Point at) override { point("menu", at); }
    void keyDown(int key) override { heard.push_back("key " + std::to_string(key)); }
    void keyUp(int key) override { heard.push_back("up " + std::to_string(key)); }
    void character(char32_t character) override {
        heard.push_back("U+" + std::to_string(static_cast<unsigned>(character)));
    }
    void focusLost() override {}
    void captureLost() override {}
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

TEST(HeadlessWindow, KeysAreHeldUntilTheyAreLetGo) {
    HeadlessWindow window;
    EXPECT_FALSE(window.isKeyDown(kKeyShift));
    window.hold(kKeyShift);
    EXPECT_TRUE(window.isKeyDown(kKeyShift));
    EXPECT_FALSE(window.isKeyDown(kKeyControl));
    window.let(kKeyShift);
    EXPECT_FALSE(window.isKeyDown(kKeyShift));
}

TEST(HeadlessWindow, AQuestionWithoutAnAnswerIsCancelled) {
    HeadlessWindow window;
    const std::vector<MenuItem> items{{1, "One", false}};
    EXPECT_EQ(window.askMessage("Sure?", true), PageAnswer::cancel);
    EXPECT_FALSE(window.askFile("Wave Files (*.wav)|*.wav||", false));
    EXPECT_EQ(window.askMenu({0, 0}, items), 0);
    EXPECT_EQ(window.takeLog(),
              (Lines{"? message \"Sure?\" -> cancel", "? file open \"Wave Files (*.wav)|*.wav||\" -> cancel",
                     "? menu 1:One -> cancel"}));
    EXPECT_EQ(window.takeLog(), Lines{});
}

TEST(HeadlessWindow, AnswersAreGivenInTheirOrder) {
    HeadlessWindow window;
    for (const char* word : {"yes", "no", "ok", "32771"}) window.answer(word);
    EXPECT_EQ(window.askMessage("A \"b\"", true), PageAnswer::yes);
    EXPECT_EQ(window.askMessage("C", true), PageAnswer::no);
    EXPECT_EQ(window.askMessage("D", false), PageAnswer::ok);
    const std::vector<MenuItem> items{{32770, "Open Audio File", false}, {32771, "Looping", true}};
    EXPECT_EQ(window.askMenu({0, 0}, items), 32771);
    EXPECT_EQ(window.takeLog(),
              (Lines{"? message \"A \\\"b\\\"\" -> yes", "? message \"C\" -> no", "? message \"D\" -> ok",
                     "? menu 32770:Open Audio File 32771:Looping:checked -> 32771"}));
}

TEST(HeadlessWindow, TheWatcherLooksAroundBeforeEachAnswer) {
    HeadlessWindow window;
    ListeningPage page(window);
    int logged = -1;
    window.setWatcher([&] {
        logged = static_cast<int>(window.takeLog().size());
        window.settle();
    });
    window.requestPaint();
    window.answer("yes");
    EXPECT_EQ(window.askMessage("Sure?", true), PageAnswer::yes);
    EXPECT_EQ(logged, 0);
    EXPECT_EQ(page.heard, Lines{"paint"});
    window.askFile("Wave Files (*.wav)|*.wav||", false);
    EXPECT_EQ(logged, 1);
}

TEST(HeadlessWindow, AMenuGivesNothingThatIsNotInIt) {
    HeadlessWindow window;
    const std::vector<MenuItem> items{{1, "One", false}};
    window.answer("2");
    EXPECT_EQ(window.askMenu({0, 0}, items), 0);
    window.answer("1x");
    EXPECT_EQ(window.askMenu({0, 0}, items), 0);
}

TEST(HeadlessWindow, FilesCountFromItsFolderAndTheLogRepeatsTheWord) {
    HeadlessWindow window;
    window.setFolder("songs");
    window.answer("take 1.mrn");
    const auto file = window.askFile("Mrn Files (*.mrn)|*.mrn||", true);
    ASSERT_TRUE(file);
    EXPECT_EQ(pathFromWide(wideFromUtf8(*file)), std::filesystem::path("songs") / "take 1.mrn");
    EXPECT_EQ(window.takeLog(), Lines{"? file save \"Mrn Files (*.mrn)|*.mrn||\" -> \"take 1.mrn\""});
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
    window.warpPointer({7, 8});
    EXPECT_EQ(window.pointer(), (Point{7, 8}));
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
