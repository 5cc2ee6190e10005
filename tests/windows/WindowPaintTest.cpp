#include "platform/drawing/Bitmap.h"
#include "windows/WindowRig.h"

namespace marnoth::test::window_paint_test {
namespace {

constexpr Color kSand{200, 180, 90};
constexpr Color kSea{10, 60, 130};

COLORREF systemColor(Color color) {
    return RGB(color.red, color.green, color.blue);
}

class WindowPaint : public WindowRig {
protected:
    /// The page shows `screen` when it is next painted, and says that `changed` is new.
    void showOnPaint(const Bitmap& screen, const Rect& changed) {
        page.onPaint = [this, screen, changed] { window.present(screen, changed); };
        window.requestPaint();
        pump();
        page.onPaint = {};
    }
    void show(Color color) {
        const Bitmap all(kWidth, kHeight, color);
        showOnPaint(all, all.bounds());
    }
    void scribble(const Rect& area) const {
        HDC const device = GetDC(handle());
        const RECT rect{area.left, area.top, area.right, area.bottom};
        FillRect(device, &rect, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
        ReleaseDC(handle(), device);
    }
};

TEST_F(WindowPaint, ShowsEachPixelInItsColourAndPlace) {
    Bitmap screen(kWidth, kHeight, kSand);
    screen.at(0, 0) = {1, 2, 3};
    screen.at(kWidth - 1, 0) = {255, 0, 0};
    screen.at(0, kHeight - 1) = {0, 255, 0};
    screen.at(kWidth - 1, kHeight - 1) = {0, 0, 255};
    showOnPaint(screen, screen.bounds());
    EXPECT_EQ(pixel({0, 0}), RGB(1, 2, 3));
    EXPECT_EQ(pixel({kWidth - 1, 0}), RGB(255, 0, 0));
    EXPECT_EQ(pixel({0, kHeight - 1}), RGB(0, 255, 0));
    EXPECT_EQ(pixel({kWidth - 1, kHeight - 1}), RGB(0, 0, 255));
    EXPECT_EQ(pixel({50, 40}), systemColor(kSand));
}

TEST_F(WindowPaint, PutsExactlyWhatChangedOnTheScreen) {
    show(kSand);
    scribble({0, 0, kWidth, kHeight});
    const Bitmap next(kWidth, kHeight, kSea);
    showOnPaint(next, {20, 30, 40, 50});
    for (const Point inside : {Point{20, 30}, {39, 30}, {20, 49}, {39, 49}})
        EXPECT_EQ(pixel(inside), systemColor(kSea)) << inside.x << "," << inside.y;
    for (const Point outside : {Point{19, 30}, {40, 30}, {20, 29}, {39, 50}, {0, 0}, {99, 79}})
        EXPECT_EQ(pixel(outside), RGB(0, 0, 0)) << outside.x << "," << outside.y;
}

TEST_F(WindowPaint, KeepsOfAScreenWhatThePageSaysIsNew) {
    show(kSand);
    showOnPaint(Bitmap(kWidth, kHeight, kSea), {90, 70, 500, 500});
    InvalidateRect(handle(), nullptr, FALSE);
    pump();
    EXPECT_EQ(pixel({90, 70}), systemColor(kSea));
    EXPECT_EQ(pixel({99, 79}), systemColor(kSea));
    EXPECT_EQ(pixel({89, 70}), systemColor(kSand));
}

TEST_F(WindowPaint, WhatWasCoveredComesBackWithoutThePage) {
    show(kSand);
    scribble({0, 0, 50, 50});
    page.paints = 0;
    const RECT uncovered{10, 10, 50, 50};
    InvalidateRect(handle(), &uncovered, TRUE);
    pump();
    EXPECT_EQ(page.paints, 0);
    EXPECT_EQ(pixel({10, 10}), systemColor(kSand));
    EXPECT_EQ(pixel({9, 10}), RGB(0, 0, 0)) << "and nothing else is touched";
}

TEST_F(WindowPaint, PaintsOnceForManyWishesWhenNothingElseWaits) {
    PostMessageW(handle(), WM_LBUTTONDOWN, MK_LBUTTON, halves({1, 1}));
    PostMessageW(handle(), WM_LBUTTONUP, 0, halves({1, 1}));
    for (int i = 0; i < 5; ++i) window.requestPaint();
    page.onPaint = [&] { page.heard.push_back("paint"); };
    pump();
    EXPECT_EQ(page.heard, (Lines{"down 1,1", "up 1,1", "paint"}));
}

TEST_F(WindowPaint, AWishInAPaintLeadsToAnother) {
    page.onPaint = [&] {
        if (page.paints == 1) window.requestPaint();
    };
    window.requestPaint();
    pump();
    EXPECT_EQ(page.paints, 2);
}

TEST_F(WindowPaint, AHiddenWindowShowsThePageWhenItIsShown) {
    show(kSand);
    window.show(SW_HIDE);
    const Bitmap next(kWidth, kHeight, kSea);
    page.onPaint = [&] { window.present(next, {0, 0, 10, 10}); };
    window.requestPaint();
    pump();
    window.show(SW_SHOW);
    pump();
    EXPECT_EQ(pixel({9, 9}), systemColor(kSea));
    EXPECT_EQ(pixel({10, 9}), systemColor(kSand));
}

TEST_F(WindowPaint, TakesAPageOfAnotherSizeWhole) {
    show(kSand);
    showOnPaint(Bitmap(40, 30, kSea), {0, 0, 1, 1});
    InvalidateRect(handle(), nullptr, FALSE);
    pump();
    EXPECT_EQ(pixel({39, 29}), systemColor(kSea));
    EXPECT_EQ(pixel({40, 29}), GetSysColor(COLOR_BTNFACE)) << "beside it is the ground of dialogs";
}

TEST_F(WindowPaint, APageThatRaisesAnErrorIsPaintedNoMoreThanItAsked) {
    page.onPaint = [] { throw std::bad_alloc(); };
    window.requestPaint();
    pump();
    EXPECT_EQ(page.paints, 1);
}

TEST_F(WindowPaint, IsNeverErased) {
    show(kSand);
    HDC const device = GetDC(handle());
    EXPECT_NE(send(WM_ERASEBKGND, reinterpret_cast<WPARAM>(device)), 0);
    ReleaseDC(handle(), device);
    EXPECT_EQ(pixel({5, 5}), systemColor(kSand));
}

TEST_F(WindowPaint, GivesItsPictureToWhoeverAsksForIt) {
    show(kSand);
    HDC const screen = GetDC(nullptr);
    HDC const device = CreateCompatibleDC(screen);
    HBITMAP const picture = CreateCompatibleBitmap(screen, kWidth, kHeight);
    ReleaseDC(nullptr, screen);
    HGDIOBJ const before = SelectObject(device, picture);
    send(WM_PRINTCLIENT, reinterpret_cast<WPARAM>(device), PRF_CLIENT);
    EXPECT_EQ(GetPixel(device, 0, 0), systemColor(kSand));
    EXPECT_EQ(GetPixel(device, kWidth - 1, kHeight - 1), systemColor(kSand));
    SelectObject(device, before);
    DeleteObject(picture);
    DeleteDC(device);
}

TEST_F(WindowPaint, IsNotTurnedOverInAFrameThatReadsFromTheRight) {
    SetWindowLongPtrW(frame.handle(), GWL_EXSTYLE,
                      GetWindowLongPtrW(frame.handle(), GWL_EXSTYLE) | WS_EX_LAYOUTRTL);
    Win32Window other(frame.handle(), kPlace, fonts, {}, {});
    other.setPage(&page);
    other.show(SW_SHOW);
    Bitmap screen(kWidth, kHeight, kSand);
    screen.at(0, 0) = kSea;
    page.onPaint = [&] { other.present(screen, screen.bounds()); };
    other.requestPaint();
    pump();
    HDC const device = GetDC(other.handle());
    EXPECT_EQ(GetPixel(device, 0, 0), systemColor(kSea));
    ReleaseDC(other.handle(), device);
    POINT left{0, 0};
    POINT right{50, 0};
    ClientToScreen(other.handle(), &left);
    ClientToScreen(other.handle(), &right);
    EXPECT_EQ(right.x - left.x, 50);
}

TEST_F(WindowPaint, FollowsItsPlace) {
    window.move({30, 40, 30 + 50, 40 + 60});
    RECT place{};
    GetWindowRect(handle(), &place);
    MapWindowPoints(nullptr, frame.handle(), reinterpret_cast<POINT*>(&place), 2);
    EXPECT_EQ(place.left, 30);
    EXPECT_EQ(place.top, 40);
    EXPECT_EQ(place.right, 80);
    EXPECT_EQ(place.bottom, 100);
}

}  // namespace
}  // namespace marnoth::test::window_paint_test
