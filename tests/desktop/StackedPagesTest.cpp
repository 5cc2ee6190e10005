#include <gtest/gtest.h>

#include "platform/drawing/HeadlessWindow.h"
#include "shells/desktop/window/StackedPages.h"

namespace marnoth::test::stacked_pages_test {
namespace {

using Lines = std::vector<std::string>;

std::string text(Point at) {
    return std::to_string(at.x) + "," + std::to_string(at.y);
}

/// A page that writes down what it hears.
class Listener final : public PageEvents {
public:
    void paint() override { heard.push_back("paint"); }
    void timer() override { heard.push_back("timer"); }
    void leftDown(Point at, Modifiers) override { heard.push_back("down " + text(at)); }
    void leftUp(Point at, Modifiers) override { heard.push_back("up " + text(at)); }
    void doubleClick(Point at, Modifiers) override { heard.push_back("double " + text(at)); }
    void mouseMove(Point at, Modifiers) override { heard.push_back("move " + text(at)); }
    void relativeMove(Point way, Modifiers) override { heard.push_back("relative " + text(way)); }
    void wheel(Point at, WheelAxis, int, Modifiers) override { heard.push_back("wheel " + text(at)); }
    void rightDown(Point at, Modifiers) override { heard.push_back("right " + text(at)); }
    void contextMenu(Point at, Modifiers) override { heard.push_back("menu " + text(at)); }
    bool keyDown(int key, Modifiers) override {
        heard.push_back("key " + std::to_string(key));
        return usesKeys;
    }
    void keyUp(int, Modifiers) override {}
    void character(char32_t, Modifiers) override { heard.push_back("character"); }
    void focusLost() override { heard.push_back("focus lost"); }
    void captureLost() override { heard.push_back("capture lost"); }
    DropEffect dragEnter(bool) override { return DropEffect::copy; }
    DropEffect dragOver(Point at) override {
        heard.push_back("over " + text(at));
        return DropEffect::copy;
    }
    void dragLeave() override { heard.push_back("leave"); }
    DropEffect drop(Point at, std::optional<std::span<const std::string>>) override {
        heard.push_back("drop " + text(at));
        return DropEffect::copy;
    }
    Lines take() { return std::exchange(heard, {}); }

    Lines heard;
    bool usesKeys = false;
};

/// A bar of 20 pixels over a page of 80.
class StackedPagesTest : public testing::Test {
protected:
    StackedPagesTest() {
        pages.setUpper(&bar);
        pages.setLower(&page);
        window.setPage(&pages);
    }

    HeadlessWindow window;
    StackedPages pages{window, 100, 20, 80};
    Listener bar;
    Listener page;
};

TEST_F(StackedPagesTest, TheMouseGoesToTheOneUnderItInItsOwnPixels) {
    window.press({5, 19});
    window.press({5, 20});
    EXPECT_EQ(bar.take(), (Lines{"down 5,19", "move 5,20"}));
    EXPECT_EQ(page.take(), (Lines{"down 5,0"}));
}

TEST_F(StackedPagesTest, WhoLosesTheMouseHearsWhereItWent) {
    window.move({5, 10});
    bar.take();
    window.move({5, 50});
    EXPECT_EQ(bar.take(), (Lines{"move 5,50"})) << "outside of it: what was lit goes out";
    EXPECT_EQ(page.take(), (Lines{"move 5,30"}));
    window.move({6, 50});
    EXPECT_EQ(bar.take(), Lines{});
}

TEST_F(StackedPagesTest, WhoHasCapturedTheMouseHasItEverywhere) {
    pages.lowerWindow().setCapture();
    EXPECT_TRUE(window.hasCapture());
    window.move({5, 3});
    EXPECT_EQ(page.take(), (Lines{"move 5,-17"}));
    EXPECT_EQ(bar.take(), Lines{});
    pages.lowerWindow().releaseCapture();
    EXPECT_FALSE(window.hasCapture());
    window.press({5, 3});
    EXPECT_EQ(bar.take(), (Lines{"down 5,3"}));
}

TEST_F(StackedPagesTest, ACaptureThatIsTakenAwayIsToldToWhoHadIt) {
    pages.upperWindow().setCapture();
    window.loseCapture();
    EXPECT_EQ(bar.take(), (Lines{"capture lost"}));
    EXPECT_EQ(page.take(), Lines{});
}

TEST_F(StackedPagesTest, DistancesGoToWhoDrags) {
    window.move({5, 5});
    bar.take();
    pages.upperWindow().beginRelativeDrag(PageCursor::none);
    window.move({7, 60});
    EXPECT_EQ(bar.take(), (Lines{"relative 2,55"}));
    pages.upperWindow().endRelativeDrag();
    EXPECT_FALSE(window.dragsRelatively());
}

TEST_F(StackedPagesTest, KeysAreThePagesUnlessTheBarWantsThem) {
    EXPECT_FALSE(window.key('Q'));
    page.usesKeys = true;
    EXPECT_TRUE(window.key('Q'));
    EXPECT_EQ(page.take(), (Lines{"key 81", "key 81"}));
    pages.upperWindow().takeFocus(true);
    EXPECT_TRUE(window.wantsFocus());
    EXPECT_FALSE(window.key('Q'));
    EXPECT_EQ(bar.take(), (Lines{"key 81"}));
    EXPECT_EQ(page.take(), Lines{});
    pages.upperWindow().takeFocus(false);
    EXPECT_FALSE(window.wantsFocus());
}

TEST_F(StackedPagesTest, APressOnOneEndsTypingOnTheOther) {
    pages.upperWindow().takeFocus(true);
    window.press({5, 50});
    EXPECT_EQ(bar.take().front(), "focus lost");
}

TEST_F(StackedPagesTest, BothPicturesMakeOne) {
    const Color red{255, 0, 0};
    const Color blue{0, 0, 255};
    pages.upperWindow().present(Bitmap(100, 20, red), {0, 0, 100, 20});
    pages.lowerWindow().present(Bitmap(100, 80, blue), {10, 0, 20, 10});
    EXPECT_EQ(window.screen().height(), 100);
    EXPECT_EQ(window.screen().at(50, 19), red);
    EXPECT_EQ(window.screen().at(10, 20), blue);
    EXPECT_EQ(window.screen().at(9, 20), Color{}) << "only what changed";
    EXPECT_EQ(window.screen().at(10, 30), Color{});
}

TEST_F(StackedPagesTest, OnlyWhoAskedIsPainted) {
    pages.lowerWindow().requestPaint();
    window.settle();
    EXPECT_EQ(page.take(), (Lines{"paint"}));
    EXPECT_EQ(bar.take(), Lines{});
}

TEST_F(StackedPagesTest, TheWindowsTimerIsThatOfTheFaster) {
    pages.lowerWindow().setTimer(200);
    EXPECT_EQ(window.timerPeriod(), 200);
    pages.upperWindow().setTimer(50);
    EXPECT_EQ(window.timerPeriod(), 50);
    pages.lowerWindow().setTimer(0);
    EXPECT_EQ(window.timerPeriod(), 50);
    pages.upperWindow().setTimer(0);
    EXPECT_EQ(window.timerPeriod(), 0);
}

TEST_F(StackedPagesTest, MenusOpenWhereTheirPageWantsThem) {
    window.leaveOpen();
    const std::vector<MenuItem> items{{1, "One", false}};
    pages.lowerWindow().askMenu({3, 4}, items, [](int) {});
    ASSERT_TRUE(window.openQuestion());
    EXPECT_EQ(window.openQuestion()->at, (Point{3, 24}));
}

TEST_F(StackedPagesTest, FilesAreDroppedOnThePage) {
    const std::vector<std::string> files{"/a.wav"};
    window.drop({5, 50}, files);
    EXPECT_EQ(page.take(), (Lines{"over 5,30", "drop 5,30"}));
}

TEST_F(StackedPagesTest, FilesThatTheProgramTakesArentThePages) {
    Lines taken;
    pages.takeFiles([&](std::span<const std::string> files) {
        taken.assign(files.begin(), files.end());
        return files.front() == "/a.mid";
    });
    for (const char* const file : {"/a.mid", "/a.wav"}) {
        window.drop({5, 50}, Lines{file});
        EXPECT_EQ(taken, Lines{file});
    }
    EXPECT_EQ(page.take(), (Lines{"over 5,30", "leave", "over 5,30", "drop 5,30"}));
}

}  // namespace
}  // namespace marnoth::test::stacked_pages_test
