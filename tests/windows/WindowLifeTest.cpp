#include <array>
#include <system_error>
#include <thread>

#include "platform/windows/GdiFonts.h"
#include "windows/AtQuestion.h"
#include "windows/WindowRig.h"

namespace marnoth::test::window_life_test {
namespace {

class WindowLife : public WindowRig {};

TEST_F(WindowLife, IsAHiddenChildOfItsParentAtFirst) {
    const Win32Window other(frame.handle(), {200, 100, 300, 160}, fonts, {}, {});
    EXPECT_EQ(GetParent(other.handle()), frame.handle());
    EXPECT_FALSE(IsWindowVisible(other.handle()));
    RECT size{};
    GetClientRect(other.handle(), &size);
    EXPECT_EQ(size.right, 100);
    EXPECT_EQ(size.bottom, 60);
}

TEST_F(WindowLife, WithoutAParentThereIsNone) {
    EXPECT_THROW(Win32Window(nullptr, kPlace, fonts, {}, {}), std::system_error);
    EXPECT_THROW(Win32Window(reinterpret_cast<HWND>(0x7FFF0001), kPlace, fonts, {}, {}), std::system_error);
}

TEST_F(WindowLife, GivesTheFontsOfItsSource) {
    std::string error;
    EXPECT_EQ(window.openFont("Arial", 12, error), nullptr);
    EXPECT_EQ(error, "No Arial.");
}

TEST_F(WindowLife, ClosedThePageHearsNoMoreAndNothingThatItAsksDoesAnything) {
    HWND const before = handle();
    window.close();
    EXPECT_EQ(handle(), nullptr);
    EXPECT_FALSE(IsWindow(before));
    window.close();
    pump();
    window.requestPaint();
    window.present(Bitmap(4, 4), {0, 0, 4, 4});
    window.setCapture();
    window.beginRelativeDrag(PageCursor::none);
    window.endRelativeDrag();
    window.releaseCapture();
    window.confinePointer(Rect{0, 0, 4, 4});
    window.setTimer(10);
    window.takeFocus(true);
    window.takeFocus(false);
    window.setCursor(PageCursor::arrow);
    window.cancelQuestion();
    window.showHelp();
    window.show(SW_SHOW);
    window.move(kPlace);
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_FALSE(GetUpdateRect(frame.handle(), nullptr, FALSE)) << "nothing else is painted again";
    pump();
    EXPECT_EQ(page.take(), Lines{});
    EXPECT_EQ(page.paints, 0);
}

TEST_F(WindowLife, AFrameThatGoesClosesIt) {
    window.setCapture();
    window.setTimer(10);
    frame.close();
    EXPECT_EQ(handle(), nullptr);
    pump();
    EXPECT_EQ(page.take(), Lines{});
    window.setTimer(0);
    window.releaseCapture();
}

TEST_F(WindowLife, WithoutAPageNothingHappens) {
    window.setPage(nullptr);
    SendMessageW(handle(), WM_LBUTTONDOWN, MK_LBUTTON, 0);
    SendMessageW(handle(), WM_TIMER, 1, 0);
    window.requestPaint();
    pump();
    EXPECT_EQ(page.take(), Lines{});
    EXPECT_EQ(page.paints, 0);
}

TEST_F(WindowLife, AWindowThatIsHiddenLosesTheMouse) {
    window.setCapture();
    window.show(SW_HIDE);
    EXPECT_EQ(page.take(), Lines{"capture lost"});
    EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(WindowLife, AnErrorOfThePageEndsItsEventAlone) {
    page.act = [](const std::string&) { throw std::runtime_error("no"); };
    SendMessageW(handle(), WM_LBUTTONDOWN, MK_LBUTTON, 0);
    SendMessageW(handle(), WM_KEYDOWN, 'A', 1);
    EXPECT_EQ(page.take(), (Lines{"down 0,0", "key 65"}));
}

TEST_F(WindowLife, APageThatIsLetGoInAnEventLivesUntilItsEnd) {
    struct Whole {
        explicit Whole(HWND frame) : window(frame, kPlace, fonts, {}, {}) {}
        NoFonts fonts;
        ListeningPage page;
        Win32Window window;
    };
    auto whole = std::make_shared<Whole>(frame.handle());
    whole->window.setPage(&whole->page);
    whole->window.setLife(whole);
    const std::weak_ptr<Whole> life = whole;
    bool livedOn = false;
    whole->page.act = [&](const std::string&) {
        whole->window.close();
        whole.reset();
        livedOn = !life.expired();
    };
    SendMessageW(whole->window.handle(), WM_KEYDOWN, 'A', 3);
    EXPECT_TRUE(livedOn);
    EXPECT_TRUE(life.expired());
}

/// Of each kind of handle that owners count.
using Counts = std::array<long, 8>;
Counts liveHandles() {
    return {DeviceHandle::live(), BitmapHandle::live(), FontHandle::live(), CursorHandle::live(),
            MenuHandle::live(),   WindowHandle::live(), HookHandle::live(), MemoryHandle::live()};
}

/// Everything that a page can want of its window.
void useAll(Win32Window& window, ListeningPage& page) {
    GdiFonts fonts;
    std::string error;
    const auto font = fonts.open("Arial", 12, error);
    window.show(SW_SHOW);
    const Bitmap screen(600, 553, {1, 2, 3});
    page.onPaint = [&] { window.present(screen, screen.bounds()); };
    window.requestPaint();
    pump();
    page.onPaint = {};
    window.setCapture();
    window.setCursor(PageCursor::dragCopy);
    window.releaseCapture();
    window.beginRelativeDrag(PageCursor::none);
    window.endRelativeDrag();
    window.setTimer(200);
    window.takeFocus(true);
    window.setClipboardText("C5");
    window.readClipboard([](const std::string& text) { EXPECT_EQ(text, "C5"); });
    const MenuItem item{1, "One", false};
    {
        const AtQuestion user([](HWND) { EndMenu(); });
        window.askMenu({0, 0}, {&item, 1}, [](int) {});
    }
    const AtQuestion user([](HWND box) { EndDialog(box, IDOK); });
    window.askMessage("So it is.", MessageKind::note, [](PageAnswer) {});
}

TEST_F(WindowLife, FiftyWindowsLeaveEveryCountAsItWas) {
    const Counts before = liveHandles();
    const long modules = ModuleLock::count();
    for (int i = 0; i < 50; ++i) {
        ListeningPage other;
        Win32Window used(frame.handle(), {0, 0, 600, 553}, fonts, squareCursor, {});
        used.setPage(&other);
        useAll(used, other);
        EXPECT_GT(WindowHandle::live(), before[5]);
        EXPECT_GT(CursorHandle::live(), before[3]);
        EXPECT_GT(BitmapHandle::live(), before[1]);
        EXPECT_GT(ModuleLock::count(), modules);
        if (i % 2 == 0) used.close();
    }
    EXPECT_EQ(liveHandles(), before);
    EXPECT_EQ(ModuleLock::count(), modules);
    // Nothing under Wine, which doesn't count.
    RecordProperty("GdiObjects", static_cast<int>(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS)));
    RecordProperty("UserObjects", static_cast<int>(GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS)));
}

TEST_F(WindowLife, AnyThreadHasWindowsOfItsOwn) {
    std::thread other([this] {
        Frame ownFrame;
        ListeningPage ownPage;
        Win32Window own(ownFrame.handle(), kPlace, fonts, {}, {});
        own.setPage(&ownPage);
        SendMessageW(own.handle(), WM_KEYDOWN, 'A', 1);
        EXPECT_EQ(ownPage.take(), Lines{"key 65"});
    });
    other.join();
}

TEST_F(WindowLife, TheClassGoesAndComesAgain) {
    const auto isThere = [] {
        WNDCLASSEXW found{};
        found.cbSize = sizeof found;
        return GetClassInfoExW(GetModuleHandleW(nullptr), L"Marnoth page", &found) != FALSE;
    };
    EXPECT_TRUE(isThere());
    window.close();
    Win32Window::unregisterClass();
    EXPECT_FALSE(isThere());
    Win32Window::unregisterClass();
    Win32Window next(frame.handle(), kPlace, fonts, {}, {});
    EXPECT_TRUE(isThere());
    EXPECT_NE(next.handle(), nullptr);
}

}  // namespace
}  // namespace marnoth::test::window_life_test
