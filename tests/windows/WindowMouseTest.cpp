#include "windows/UserInput.h"
#include "windows/WindowRig.h"

namespace marnoth::test::window_mouse_test {
namespace {

class WindowMouse : public WindowRig {
protected:
    WindowMouse() {
        movePointer(screenPoint({1, 1}));
        settle();
    }
    ~WindowMouse() override { ClipCursor(nullptr); }

    /// By a user's hand; what the page hears of it.
    Lines moveTo(Point at) {
        movePointer(screenPoint(at));
        pump();
        return page.take();
    }
    Lines button(DWORD what) {
        mouseInput(what);
        pump();
        return page.take();
    }
    static POINT pointerOnScreen() {
        POINT at{};
        GetCursorPos(&at);
        return at;
    }
    /// As a wheel that turns by `parts`, of which a click has 120.
    Lines wheel(UINT message, int parts, Point at = {4, 5}) {
        send(message, MAKEWPARAM(0, static_cast<WORD>(parts)), screenHalves(at));
        return page.take();
    }
};

TEST_F(WindowMouse, TellsOfButtonsAndMovesInPixelsOfThePage) {
    EXPECT_EQ(moveTo({30, 40}), Lines{"move 30,40"});
    EXPECT_EQ(button(MOUSEEVENTF_LEFTDOWN), Lines{"down 30,40"});
    EXPECT_EQ(button(MOUSEEVENTF_LEFTUP), Lines{"up 30,40"});
}

TEST_F(WindowMouse, ADoubleClickComesInPlaceOfTheSecondPress) {
    moveTo({30, 40});
    button(MOUSEEVENTF_LEFTDOWN);
    button(MOUSEEVENTF_LEFTUP);
    EXPECT_EQ(button(MOUSEEVENTF_LEFTDOWN), Lines{"double 30,40"});
    EXPECT_EQ(button(MOUSEEVENTF_LEFTUP), Lines{"up 30,40"});
}

TEST_F(WindowMouse, TheContextMenuFollowsTheRightButton) {
    moveTo({30, 40});
    EXPECT_EQ(button(MOUSEEVENTF_RIGHTDOWN), Lines{"right 30,40"});
    EXPECT_EQ(button(MOUSEEVENTF_RIGHTUP), Lines{"menu 30,40"});
}

TEST_F(WindowMouse, AContextMenuThatTheKeyboardAsksForOpensNothing) {
    EXPECT_EQ(send(WM_CONTEXTMENU, reinterpret_cast<WPARAM>(handle()), -1), 0);
    EXPECT_EQ(page.heard, Lines{});
}

TEST_F(WindowMouse, WithoutCaptureNothingComesFromOutside) {
    EXPECT_EQ(moveTo({kWidth + 40, 10}), Lines{});
    EXPECT_EQ(button(MOUSEEVENTF_LEFTDOWN), Lines{});
    EXPECT_EQ(button(MOUSEEVENTF_LEFTUP), Lines{});
}

TEST_F(WindowMouse, WithCaptureEverythingComesAlsoFromOutside) {
    moveTo({30, 40});
    button(MOUSEEVENTF_LEFTDOWN);
    window.setCapture();
    EXPECT_EQ(moveTo({kWidth + 40, -10}), Lines{"move 140,-10"});
    EXPECT_EQ(button(MOUSEEVENTF_LEFTUP), Lines{"up 140,-10"});
    window.releaseCapture();
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_EQ(moveTo({kWidth + 50, -10}), Lines{});
}

TEST_F(WindowMouse, SaysOnceThatTheCaptureIsLost) {
    window.setCapture();
    SetCapture(frame.handle());
    EXPECT_EQ(page.take(), Lines{"capture lost"});
    ReleaseCapture();
    window.releaseCapture();
    EXPECT_EQ(page.take(), Lines{});
}

TEST_F(WindowMouse, WhatOpensAboveTakesTheCapture) {
    window.setCapture();
    EnableWindow(frame.handle(), FALSE);
    send(WM_CANCELMODE);
    EnableWindow(frame.handle(), TRUE);
    EXPECT_EQ(page.take(), Lines{"capture lost"});
}

TEST_F(WindowMouse, AReleaseOfWhichNobodyHeardIsALossOfTheMouse) {
    for (const UINT press : {WM_LBUTTONDOWN, WM_LBUTTONDBLCLK}) {
        send(press, MK_LBUTTON, halves({3, 4}));
        window.setCapture();
        page.heard.clear();
        send(WM_MOUSEMOVE, MK_LBUTTON, halves({5, 6}));
        EXPECT_EQ(page.take(), Lines{"move 5,6"});
        send(WM_MOUSEMOVE, 0, halves({7, 8}));
        EXPECT_EQ(page.take(), (Lines{"capture lost", "move 7,8"}));
        EXPECT_EQ(GetCapture(), nullptr);
    }
}

TEST_F(WindowMouse, APageMayHoldTheMouseWithNoButtonDown) {
    send(WM_LBUTTONDOWN, MK_LBUTTON, halves({3, 4}));
    window.setCapture();
    send(WM_LBUTTONUP, 0, halves({3, 4}));
    page.heard.clear();
    send(WM_MOUSEMOVE, 0, halves({7, 8}));
    EXPECT_EQ(page.take(), Lines{"move 7,8"});
    EXPECT_EQ(GetCapture(), handle());
}

TEST_F(WindowMouse, ACaptureThatIsGivenBackIsNotLost) {
    window.setCapture();
    window.setCapture();
    window.releaseCapture();
    window.releaseCapture();
    EXPECT_EQ(page.take(), Lines{});
}

TEST_F(WindowMouse, TakesNoCaptureOfAnother) {
    SetCapture(frame.handle());
    window.releaseCapture();
    window.endRelativeDrag();
    EXPECT_EQ(GetCapture(), frame.handle());
    ReleaseCapture();
}

TEST_F(WindowMouse, ARelativeDragTellsDistancesAndKeepsThePointerInItsPlace) {
    moveTo({30, 40});
    button(MOUSEEVENTF_LEFTDOWN);
    const POINT pressed = pointerOnScreen();
    window.beginRelativeDrag(PageCursor::none);
    EXPECT_EQ(moveTo({33, 38}), Lines{"by 3,-2"});
    EXPECT_EQ(moveTo({30, 47}), Lines{"by 0,7"});
    EXPECT_EQ(window.pointer(), (Point{30, 40}));
    EXPECT_EQ(button(MOUSEEVENTF_LEFTUP), Lines{"up 30,40"});
    window.endRelativeDrag();
    EXPECT_EQ(pointerOnScreen().x, pressed.x);
    EXPECT_EQ(pointerOnScreen().y, pressed.y);
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_EQ(moveTo({5, 6}), Lines{"move 5,6"});
}

TEST_F(WindowMouse, NoEdgeOfTheScreenLimitsARelativeDrag) {
    SetWindowPos(frame.handle(), nullptr, -15, -45, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    POINT corner{0, 0};
    ScreenToClient(handle(), &corner);
    moveTo({corner.x, corner.y});
    ASSERT_EQ(pointerOnScreen().x, 0);
    window.beginRelativeDrag(PageCursor::none);
    int up = 0;
    page.act = [&](const std::string& line) {
        int x = 0;
        int y = 0;
        if (std::sscanf(line.c_str(), "by %d,%d", &x, &y) == 2) up -= y;
    };
    for (int i = 0; i < 30; ++i) {
        const POINT here = pointerOnScreen();
        movePointer({here.x, here.y - 10});
        pump();
    }
    EXPECT_EQ(up, 300);
    window.endRelativeDrag();
    EXPECT_EQ(pointerOnScreen().x, 0);
    EXPECT_EQ(pointerOnScreen().y, 0);
}

TEST_F(WindowMouse, ARelativeDragThatLosesTheMouseEnds) {
    moveTo({30, 40});
    window.beginRelativeDrag(PageCursor::none);
    moveTo({33, 38});
    SetCapture(frame.handle());
    EXPECT_EQ(page.take(), Lines{"capture lost"});
    ReleaseCapture();
    EXPECT_EQ(moveTo({5, 6}), Lines{"move 5,6"});
}

TEST_F(WindowMouse, APageThatEndsItsDragWhenItLosesTheMouseHearsOfItOnce) {
    window.beginRelativeDrag(PageCursor::none);
    page.act = [&](const std::string&) {
        window.endRelativeDrag();
        window.releaseCapture();
    };
    SetCapture(frame.handle());
    EXPECT_EQ(page.take(), Lines{"capture lost"});
    EXPECT_EQ(GetCapture(), frame.handle());
    ReleaseCapture();
}

TEST_F(WindowMouse, ConfinesThePointerToPartsOfThePage) {
    RECT before{};
    GetClipCursor(&before);
    window.confinePointer(Rect{10, 20, 40, 60});
    RECT cage{};
    GetClipCursor(&cage);
    EXPECT_EQ(cage.left, screenPoint({10, 20}).x);
    EXPECT_EQ(cage.top, screenPoint({10, 20}).y);
    EXPECT_EQ(cage.right - cage.left, 30);
    EXPECT_EQ(cage.bottom - cage.top, 40);
    EXPECT_EQ(moveTo({90, 70}), Lines{"move 39,59"});
    window.confinePointer({});
    GetClipCursor(&cage);
    EXPECT_TRUE(EqualRect(&cage, &before));
    EXPECT_EQ(moveTo({90, 70}), Lines{"move 90,70"});
}

TEST_F(WindowMouse, LeavesThePointerInTheCageOfAnother) {
    const RECT others{0, 0, 500, 400};
    ClipCursor(&others);
    window.confinePointer({});
    RECT cage{};
    GetClipCursor(&cage);
    EXPECT_TRUE(EqualRect(&cage, &others));
}

TEST_F(WindowMouse, AWindowThatClosesLetsThePointerGo) {
    window.confinePointer(Rect{10, 20, 40, 60});
    window.setCapture();
    window.close();
    RECT cage{};
    GetClipCursor(&cage);
    EXPECT_EQ(cage.right - cage.left, GetSystemMetrics(SM_CXSCREEN));
    EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(WindowMouse, KnowsWhereThePointerIs) {
    moveTo({12, 34});
    EXPECT_EQ(window.pointer(), (Point{12, 34}));
}

TEST_F(WindowMouse, EachEventSaysWhichModifiersAreHeld) {
    moveTo({30, 40});
    const HeldKey shift(VK_SHIFT);
    EXPECT_EQ(button(MOUSEEVENTF_LEFTDOWN), Lines{"down shift 30,40"});
    const HeldKey control(VK_CONTROL);
    EXPECT_EQ(button(MOUSEEVENTF_LEFTUP), Lines{"up shift ctrl 30,40"});
}

TEST_F(WindowMouse, AThirdLevelKeyIsNoModifier) {
    moveTo({30, 40});
    const HeldKey control(VK_LCONTROL);
    const HeldKey alt(VK_RMENU, KEYEVENTF_EXTENDEDKEY);
    EXPECT_EQ(button(MOUSEEVENTF_LEFTDOWN), Lines{"down 30,40"});
    const HeldKey right(VK_RCONTROL, KEYEVENTF_EXTENDEDKEY);
    EXPECT_EQ(button(MOUSEEVENTF_LEFTUP), Lines{"up ctrl 30,40"});
}

TEST_F(WindowMouse, TheWheelTurnsAwayFromTheUserAndToTheRightAboveZero) {
    EXPECT_EQ(wheel(WM_MOUSEWHEEL, 120), Lines{"wheel 1 at 4,5"});
    EXPECT_EQ(wheel(WM_MOUSEWHEEL, -240), Lines{"wheel -2 at 4,5"});
    EXPECT_EQ(wheel(WM_MOUSEHWHEEL, 360), Lines{"sideways 3 at 4,5"});
    EXPECT_EQ(wheel(WM_MOUSEHWHEEL, -120), Lines{"sideways -1 at 4,5"});
}

TEST_F(WindowMouse, PartsOfTheWheelsClicksAddUpForEachAxis) {
    EXPECT_EQ(wheel(WM_MOUSEWHEEL, 50), Lines{});
    EXPECT_EQ(wheel(WM_MOUSEHWHEEL, 100), Lines{});
    EXPECT_EQ(wheel(WM_MOUSEWHEEL, 50), Lines{});
    EXPECT_EQ(wheel(WM_MOUSEWHEEL, 50), Lines{"wheel 1 at 4,5"});
    EXPECT_EQ(wheel(WM_MOUSEHWHEEL, 20), Lines{"sideways 1 at 4,5"});
    EXPECT_EQ(wheel(WM_MOUSEWHEEL, 90), Lines{"wheel 1 at 4,5"}) << "with the 30 that were left";
}

TEST_F(WindowMouse, AWheelThatTurnsBackBeginsAnew) {
    EXPECT_EQ(wheel(WM_MOUSEWHEEL, 110), Lines{});
    EXPECT_EQ(wheel(WM_MOUSEWHEEL, -20), Lines{});
    EXPECT_EQ(wheel(WM_MOUSEWHEEL, -100), Lines{"wheel -1 at 4,5"});
}

TEST_F(WindowMouse, TheWheelIsOnlyForThePageThatThePointerIsOver) {
    EXPECT_EQ(wheel(WM_MOUSEWHEEL, 120, {-3, 5}), Lines{});
    EXPECT_EQ(wheel(WM_MOUSEWHEEL, 120, {4, kHeight}), Lines{});
}

TEST_F(WindowMouse, TheWheelTurnsWithTheSystemsInputToo) {
    moveTo({30, 40});
    window.takeFocus(true);
    settle();
    mouseInput(MOUSEEVENTF_WHEEL, {}, 120);
    pump();
    EXPECT_EQ(page.take(), Lines{"wheel 1 at 30,40"});
}

HCURSOR cursorAfter(Win32Window& window, PageCursor wanted) {
    window.setCursor(wanted);
    SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    EXPECT_NE(SendMessageW(window.handle(), WM_SETCURSOR, reinterpret_cast<WPARAM>(window.handle()),
                           MAKELPARAM(HTCLIENT, WM_MOUSEMOVE)),
              0);
    return GetCursor();
}

TEST_F(WindowMouse, ShowsThePointersThatThePageWants) {
    EXPECT_EQ(cursorAfter(window, PageCursor::arrow), LoadCursorW(nullptr, IDC_ARROW));
    EXPECT_EQ(cursorAfter(window, PageCursor::none), nullptr);
    HCURSOR const own = cursorAfter(window, PageCursor::dragCopy);
    EXPECT_NE(own, nullptr);
    EXPECT_NE(own, LoadCursorW(nullptr, IDC_ARROW));
    EXPECT_NE(cursorAfter(window, PageCursor::sizeVertical), own);
    EXPECT_EQ(cursorAfter(window, PageCursor::dragCopy), own) << "made once";
}

TEST_F(WindowMouse, ThePagesOwnPointersLookAsItsPicturesSay) {
    ICONINFO icon{};
    ASSERT_TRUE(GetIconInfo(cursorAfter(window, PageCursor::dragCopy), &icon));
    EXPECT_FALSE(icon.fIcon);
    EXPECT_EQ(icon.xHotspot, 1u);
    EXPECT_EQ(icon.yHotspot, 2u);
    BITMAP mask{};
    EXPECT_NE(GetObjectW(icon.hbmMask, sizeof mask, &mask), 0);
    EXPECT_EQ(mask.bmWidth, 32);
    DeleteObject(icon.hbmMask);
    if (icon.hbmColor) DeleteObject(icon.hbmColor);
    // Drawn on white and on black: the picture, and around it what was there.
    for (const COLORREF ground : {RGB(255, 255, 255), RGB(0, 0, 0)}) {
        HDC const device = CreateCompatibleDC(nullptr);
        HDC const screen = GetDC(nullptr);
        HBITMAP const bitmap = CreateCompatibleBitmap(screen, 32, 32);
        ReleaseDC(nullptr, screen);
        HGDIOBJ const before = SelectObject(device, bitmap);
        HBRUSH const brush = CreateSolidBrush(ground);
        const RECT all{0, 0, 32, 32};
        FillRect(device, &all, brush);
        DrawIconEx(device, 0, 0, GetCursor(), 32, 32, 0, nullptr, DI_NORMAL);
        EXPECT_EQ(GetPixel(device, 0, 0), RGB(50, 20, 30));
        EXPECT_EQ(GetPixel(device, 3, 3), RGB(50, 20, 30));
        EXPECT_EQ(GetPixel(device, 4, 3), ground);
        EXPECT_EQ(GetPixel(device, 3, 4), ground);
        EXPECT_EQ(GetPixel(device, 31, 0), ground);
        SelectObject(device, before);
        DeleteObject(brush);
        DeleteObject(bitmap);
        DeleteDC(device);
    }
}

TEST_F(WindowMouse, ARelativeDragShowsItsOwnPointer) {
    window.setCursor(PageCursor::arrow);
    window.beginRelativeDrag(PageCursor::sizeVertical);
    HCURSOR const shown = GetCursor();
    EXPECT_NE(shown, LoadCursorW(nullptr, IDC_ARROW));
    window.endRelativeDrag();
    EXPECT_EQ(GetCursor(), LoadCursorW(nullptr, IDC_ARROW));
    window.beginRelativeDrag(PageCursor::none);
    EXPECT_EQ(GetCursor(), nullptr);
    window.endRelativeDrag();
    EXPECT_EQ(GetCursor(), LoadCursorW(nullptr, IDC_ARROW));
}

TEST_F(WindowMouse, ThePointerOfAnEdgeOfTheFrameIsTheFrames) {
    window.setCursor(PageCursor::sizeVertical);
    SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    send(WM_SETCURSOR, reinterpret_cast<WPARAM>(handle()), MAKELPARAM(HTLEFT, WM_MOUSEMOVE));
    EXPECT_NE(GetCursor(), LoadCursorW(nullptr, IDC_SIZENS));
}

}  // namespace
}  // namespace marnoth::test::window_mouse_test
