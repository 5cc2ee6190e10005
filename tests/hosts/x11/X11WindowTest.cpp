#include <gtest/gtest.h>
#include <poll.h>

#include <clocale>
#include <stdexcept>
#include <vector>

#include "editor/skin/Skin.h"
#include "hosts/x11/OtherProgram.h"
#include "platform/drawing/PlatformFonts.h"
#include "platform/linux/X11Window.h"
#include "shellkit/page/ChooserChain.h"
#include "shellkit/page/QuestionBox.h"

namespace marnoth::test::x11_window_test {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Words = std::vector<std::string>;

/// A page that writes down what it hears.
class Listener final : public PageEvents {
public:
    Words heard;
    bool usesKeys = true;

    void paint() override {}
    void timer() override { ++ticks; }
    void leftDown(Point at, Modifiers) override { note("press", at); }
    void leftUp(Point at, Modifiers) override { note("release", at); }
    void doubleClick(Point at, Modifiers) override { note("double", at); }
    void mouseMove(Point, Modifiers) override {}
    void relativeMove(Point, Modifiers) override {}
    void wheel(Point, WheelAxis axis, int steps, Modifiers) override {
        heard.push_back((axis == WheelAxis::vertical ? "wheel " : "sideways ") + std::to_string(steps));
    }
    void rightDown(Point, Modifiers) override {}
    void contextMenu(Point at, Modifiers) override { note("menu", at); }
    bool keyDown(int key, Modifiers) override {
        heard.push_back("key " + std::to_string(key));
        return usesKeys;
    }
    void keyUp(int key, Modifiers) override { heard.push_back("up " + std::to_string(key)); }
    void character(char32_t character, Modifiers) override { typed += character; }
    void focusLost() override { heard.push_back("focus lost"); }
    void captureLost() override { heard.push_back("capture lost"); }
    DropEffect dragEnter(bool) override { return DropEffect::none; }
    DropEffect dragOver(Point) override { return DropEffect::none; }
    void dragLeave() override {}
    DropEffect drop(Point, std::optional<std::span<const std::string>>) override { return DropEffect::none; }

    long count(const std::string& what) const { return std::ranges::count(heard, what); }

    std::u32string typed;
    int ticks = 0;

private:
    void note(const std::string& what, Point at) {
        heard.push_back(what + " " + std::to_string(at.x) + "," + std::to_string(at.y));
    }
};

/// A page of 200 by 100 pixels in a window at the screen's corner, without a window manager.
class X11WindowTest : public testing::Test {
protected:
    X11WindowTest() {
        std::setlocale(LC_CTYPE, "C.UTF-8");
        other.setResolution(96);
    }

    void open(int scale = 1, ::Window parent = 0) {
        window.emplace(X11Window::Setup{.parent = parent,
                                        .scale = scale,
                                        .width = 200,
                                        .height = 100,
                                        .title = "Test",
                                        .cursors = skinCursor,
                                        .icon = {}},
                       *fonts, questions, chooser);
        window->setPage(&page);
        window->show();
        window->present(Bitmap(200, 100, Color{10, 20, 30}), {0, 0, 200, 100});
        pump([&] { return isMapped(); });
    }
    bool isMapped() {
        XWindowAttributes now{};
        XGetWindowAttributes(other.display(), window->id(), &now);
        return now.map_state == IsViewable;
    }
    /// Lets the window work until `done`, or for `most` at the longest; whether it was done.
    bool pump(const std::function<bool()>& done, Clock::duration most = 5s) {
        const auto end = Clock::now() + most;
        while (Clock::now() < end) {
            window->dispatch();
            if (done()) return true;
            pollfd wait{window->descriptor(), POLLIN, 0};
            poll(&wait, 1, 5);
        }
        return false;
    }
    void pumpFor(Clock::duration time) {
        pump([] { return false; }, time);
    }
    void focusWindow() {
        other.focus(window->id());
        pumpFor(50ms);
    }
    Point sizeOf(::Window id) {
        XWindowAttributes now{};
        XGetWindowAttributes(other.display(), id, &now);
        return {now.width, now.height};
    }
    /// Who has the keyboard.
    ::Window holder() {
        ::Window now = 0;
        int reverts = 0;
        XGetInputFocus(other.display(), &now, &reverts);
        return now;
    }
    unsigned long pixelAt(int x, int y) {
        XImage* const image = XGetImage(other.display(), window->id(), x, y, 1, 1, AllPlanes, ZPixmap);
        const unsigned long pixel = image ? XGetPixel(image, 0, 0) & 0xFFFFFF : 0;
        if (image) XDestroyImage(image);
        return pixel;
    }

    std::unique_ptr<FontSource> fonts = platformFonts();
    std::string trouble;
    std::unique_ptr<Font> font = fonts->open("Arial", 14, trouble);
    QuestionBox questions{*font};
    ChooserChain chooser{{}};
    Listener page;
    OtherProgram other;
    std::optional<X11Window> window;
};

TEST_F(X11WindowTest, ScaleFollowsTheResolutionOfTheUsersTexts) {
    for (const auto& [dots, scale] :
         {std::pair(96, 1), std::pair(144, 1), std::pair(168, 2), std::pair(192, 2), std::pair(288, 3)}) {
        other.setResolution(dots);
        open(0);
        EXPECT_EQ(window->scale(), scale) << dots;
        EXPECT_EQ(sizeOf(window->id()), (Point{200 * scale, 100 * scale}));
    }
}

TEST_F(X11WindowTest, ScaleCanChangeWhileItIsOpen) {
    open();
    window->setScale(3);
    EXPECT_TRUE(pump([&] { return sizeOf(window->id()) == Point{600, 300}; }));
    EXPECT_TRUE(pump([&] { return pixelAt(599, 299) == 0x0A141E; })) << "the whole page is seen";
    other.move(300, 150);
    other.button(1);
    EXPECT_TRUE(pump([&] { return page.count("release 100,50") == 1; }));
    window->setScale(1);
    EXPECT_TRUE(pump([&] { return sizeOf(window->id()) == Point{200, 100}; }));
}

TEST_F(X11WindowTest, MouseAndWheelReachThePage) {
    open();
    other.move(20, 30);
    other.button(1);
    other.button(1);
    other.button(4);
    other.button(5);
    other.button(7);
    other.button(3);
    EXPECT_TRUE(pump([&] { return page.count("menu 20,30") == 1; }));
    EXPECT_EQ(page.heard, (Words{"press 20,30", "release 20,30", "double 20,30", "release 20,30", "wheel 1",
                                 "wheel -1", "sideways 1", "menu 20,30"}));
}

TEST_F(X11WindowTest, AHeldKeyRepeatsAndIsLetGoOnce) {
    open();
    focusWindow();
    other.key(XK_Right, true);
    EXPECT_TRUE(pump([&] { return page.count("key 39") >= 3; }));
    EXPECT_EQ(page.count("up 39"), 0);
    other.key(XK_Right, false);
    EXPECT_TRUE(pump([&] { return page.count("up 39") > 0; }));
    EXPECT_EQ(page.count("up 39"), 1);
}

TEST_F(X11WindowTest, KeysComposeACharacter) {
    // A key of the keyboard that has no symbol becomes the one that composes.
    const KeyCode composes = 248;
    KeySym symbol = XK_Multi_key;
    XChangeKeyboardMapping(other.display(), composes, 1, &symbol, 1);
    XSync(other.display(), kXFalse);
    std::setlocale(LC_CTYPE, "en_US.UTF-8") || std::setlocale(LC_CTYPE, "C.UTF-8");
    open();
    focusWindow();
    other.type(XK_a);
    other.type(XK_Multi_key);
    other.type(XK_apostrophe);
    other.type(XK_e);
    other.type(XK_b);
    ASSERT_TRUE(pump([&] { return page.typed.ends_with(U'b'); }));
    EXPECT_EQ(page.typed, U"a\u00E9b");
}

TEST_F(X11WindowTest, AnInputMethodThatIsntThereLeavesTheKeys) {
    setenv("XMODIFIERS", "@im=nowhere", 1);
    open();
    unsetenv("XMODIFIERS");
    focusWindow();
    other.type(XK_q);
    ASSERT_TRUE(pump([&] { return !page.typed.empty(); }));
    EXPECT_EQ(page.typed, U"q");
}

TEST_F(X11WindowTest, AKeyboardThatIsAwayForAMomentIsntLost) {
    open();
    other.show();
    focusWindow();
    other.focus(other.window());
    other.focus(window->id());
    pumpFor(200ms);
    EXPECT_EQ(page.count("focus lost"), 0);
    other.focus(other.window());
    pumpFor(250ms);
    EXPECT_EQ(page.count("focus lost"), 1);
}

TEST_F(X11WindowTest, KeysThatAnEmbeddedPageHasNoUseForGoToItsHost) {
    other.show();
    open(1, other.window());
    other.focus(window->id());
    pumpFor(50ms);
    page.usesKeys = false;
    other.type(XK_space);
    ASSERT_TRUE(pump([&] { return page.count("up 32") == 1; }));
    window->dispatch();
    XSync(other.display(), kXFalse);
    const auto down = other.next(KeyPress);
    ASSERT_TRUE(down);
    EXPECT_EQ(XLookupKeysym(const_cast<XKeyEvent*>(&down->xkey), 0), static_cast<KeySym>(XK_space));
    EXPECT_TRUE(other.next(KeyRelease));
    EXPECT_EQ(page.typed, U"");
    page.usesKeys = true;
    other.type(XK_a);
    ASSERT_TRUE(pump([&] { return page.count("up 65") == 1; }));
    XSync(other.display(), kXFalse);
    EXPECT_FALSE(other.next(KeyPress));
}

TEST_F(X11WindowTest, AnEmbeddedPageGivesTheKeyboardBackAfterTyping) {
    other.show();
    other.focus(other.window());
    open(1, other.window());
    window->takeFocus(true);
    EXPECT_TRUE(pump([&] { return holder() == window->id(); }));
    window->takeFocus(false);
    EXPECT_TRUE(pump([&] { return holder() == other.window(); }));
}

TEST_F(X11WindowTest, AKeyboardThatAHostTakesAtAPressComesBackHoweverLateThatIs) {
    other.show();
    open(1, other.window());
    other.move(20, 30);
    other.button(1);
    ASSERT_TRUE(pump([&] { return page.count("release 20,30") == 1; }));
    window->takeFocus(true);
    pumpFor(300ms);
    other.focus(other.window());
    EXPECT_TRUE(pump([&] { return holder() == window->id(); }));
    pumpFor(150ms);
    EXPECT_EQ(page.count("focus lost"), 0);
    // What its user has moved to is the host's.
    other.move(500, 500);
    other.focus(other.window());
    EXPECT_TRUE(pump([&] { return page.count("focus lost") == 1; }));
    EXPECT_EQ(holder(), other.window());
}

TEST_F(X11WindowTest, APressGetsTheKeyboardThatIsAboutToBeLost) {
    other.show();
    open(1, other.window());
    window->takeFocus(true);
    ASSERT_TRUE(pump([&] { return holder() == window->id(); }));
    pumpFor(20ms);
    other.move(500, 500);
    other.focus(other.window());
    pumpFor(20ms);
    other.move(20, 30);
    other.button(1);
    EXPECT_TRUE(pump([&] { return holder() == window->id(); }));
    pumpFor(200ms);
    EXPECT_EQ(page.count("focus lost"), 0);
}

TEST_F(X11WindowTest, AHostsWindowMayHaveAnotherDepth) {
    const ::Window parent = other.windowOfDepth(32);
    ASSERT_NE(parent, kXNone) << "the display has no such windows";
    open(1, parent);
    EXPECT_EQ(sizeOf(window->id()), (Point{200, 100}));
    EXPECT_TRUE(pump([&] { return pixelAt(10, 10) == 0x0A141E; }));
}

TEST_F(X11WindowTest, AHostMayDestroyItsWindowFirst) {
    other.show();
    open(2, other.window());
    window->setTimer(5);
    window->setCapture();
    other.destroyWindow();
    EXPECT_TRUE(pump([&] { return window->isGone(); }));
    window->present(Bitmap(200, 100), {0, 0, 200, 100});
    window->setScale(3);
    window->dispatch();
    EXPECT_EQ(window->deadline(), std::nullopt);
}

TEST_F(X11WindowTest, AnOpenQuestionStopsNeitherTimerNorItsKeys) {
    open();
    window->setTimer(5);
    focusWindow();
    std::optional<PageAnswer> answer;
    window->askMessage("Sure?", MessageKind::yesNo, [&](PageAnswer given) { answer = given; });
    const int before = page.ticks;
    EXPECT_TRUE(pump([&] { return page.ticks > before + 3; }));
    other.type(XK_n);
    ASSERT_TRUE(pump([&] { return answer.has_value(); }));
    EXPECT_EQ(*answer, PageAnswer::no);
    EXPECT_EQ(page.count("key 78"), 0) << "it reached the page";
}

TEST_F(X11WindowTest, AMenuIsChosenFromByKeys) {
    open();
    focusWindow();
    int chosen = -1;
    window->askMenu({5, 5}, std::vector<MenuItem>{{7, "One", false}, {8, "Two", true}},
                    [&](int id) { chosen = id; });
    for (const KeySym key : {XK_Down, XK_Down, XK_Return}) other.type(key);
    ASSERT_TRUE(pump([&] { return chosen >= 0; }));
    EXPECT_EQ(chosen, 8);
}

TEST_F(X11WindowTest, WithoutADialogOfFilesNoneIsChosen) {
    open();
    bool answered = false;
    window->askFile("A|*.a||", FileKind::open,
                    [&](const std::optional<std::string>& file) { answered = !file; });
    EXPECT_TRUE(answered);
    EXPECT_FALSE(window->isAsking());
}

TEST_F(X11WindowTest, OthersReadWhatThePageCopied) {
    open();
    window->setClipboardText("\xC3\xBC loop");
    window->dispatch();
    const Atom inbox = other.atom("INBOX");
    XConvertSelection(other.display(), other.atom("CLIPBOARD"), other.atom("UTF8_STRING"), inbox,
                      other.window(), CurrentTime);
    XFlush(other.display());
    ASSERT_TRUE(pump([&] { return other.next(SelectionNotify).has_value(); }));
    Atom type = kXNone;
    int bits = 0;
    unsigned long units = 0;
    unsigned long rest = 0;
    unsigned char* data = nullptr;
    XGetWindowProperty(other.display(), other.window(), inbox, 0, 100, kXFalse, AnyPropertyType, &type, &bits,
                       &units, &rest, &data);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(data), units), "\xC3\xBC loop");
    XFree(data);
}

TEST_F(X11WindowTest, ALongTextComesInParts) {
    open();
    other.ownClipboard();
    std::string text;
    bool isThere = false;
    window->readClipboard([&](const std::string& read) {
        text = read;
        isThere = true;
    });
    std::optional<XEvent> request;
    ASSERT_TRUE(pump([&] { return (request = other.next(SelectionRequest)).has_value(); }));
    const XSelectionRequestEvent asked = request->xselectionrequest;
    const long size = 300'000;
    XSelectInput(other.display(), asked.requestor, PropertyChangeMask);
    other.put(asked.requestor, asked.property, other.atom("INCR"), 32, &size, 1);
    other.answer(asked);
    std::string whole;
    // Each part is put there when the one before has been taken away; an empty one is the end.
    for (const char letter : {'a', 'b', 'c', '\0'}) {
        const auto taken = [&] {
            const auto event = other.next(PropertyNotify);
            return event && event->xproperty.atom == asked.property &&
                   event->xproperty.state == PropertyDelete;
        };
        ASSERT_TRUE(pump(taken)) << letter;
        const std::string part(letter ? 100'000 : 0, letter);
        other.put(asked.requestor, asked.property, asked.target, 8, part.data(), part.size());
        whole += part;
    }
    ASSERT_TRUE(pump([&] { return isThere; }));
    EXPECT_EQ(text, whole);
}

TEST_F(X11WindowTest, SomebodyWhoNeverHandsTheTextOverHoldsNobodyUp) {
    open();
    other.ownClipboard();
    bool isThere = false;
    window->readClipboard([&](const std::string& text) { isThere = text.empty(); });
    EXPECT_TRUE(pump([&] { return isThere; }));
}

}  // namespace
}  // namespace marnoth::test::x11_window_test
