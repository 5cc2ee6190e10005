#include "platform/windows/PointerHold.h"

#include <algorithm>
#include <utility>

#include "platform/windows/SystemGeometry.h"

namespace marnoth {

namespace {

constexpr LONG kRoomForMoves =
    64;  ///< pixels to each edge of the screen; more than a hand does between two messages

POINT pointerOnScreen() {
    POINT at{};
    GetCursorPos(&at);
    return at;
}

/// `at` with room around it on its screen.
POINT awayFromEdges(POINT at) {
    MONITORINFO screen{};
    screen.cbSize = sizeof screen;
    if (!GetMonitorInfoW(MonitorFromPoint(at, MONITOR_DEFAULTTONEAREST), &screen)) return at;
    InflateRect(&screen.rcMonitor, -kRoomForMoves, -kRoomForMoves);
    const RECT& inner = screen.rcMonitor;
    if (inner.left >= inner.right || inner.top >= inner.bottom) return at;
    return {std::clamp(at.x, inner.left, inner.right - 1), std::clamp(at.y, inner.top, inner.bottom - 1)};
}

/// Where the pointer is then.
POINT putPointer(POINT to) {
    SetCursorPos(to.x, to.y);
    return pointerOnScreen();
}

}  // namespace

void PointerHold::capture(HWND window) {
    if (!window) return;
    SetCapture(window);
    captured_ = true;
}

void PointerHold::release(HWND window) {
    endDrag();
    if (std::exchange(captured_, false) && window) ReleaseCapture();
}

bool PointerHold::lost() {
    if (!std::exchange(captured_, false)) return false;
    endDrag();
    return true;
}

void PointerHold::beginRelative(HWND window, PageCursor shown) {
    if (!window) return;
    capture(window);
    const POINT start = pointerOnScreen();
    const POINT home = awayFromEdges(start);
    drag_ = RelativeDrag{start, home, putPointer(home), shown};
    showCursor();
}

void PointerHold::endDrag() {
    if (!drag_) return;
    putPointer(drag_->start);
    drag_.reset();
    showCursor();
}

Point PointerHold::distance() {
    if (!drag_) return {};
    const POINT here = pointerOnScreen();
    const Point way{here.x - drag_->last.x, here.y - drag_->last.y};
    // Where the system doesn't put the pointer back, moves count from one place to the next.
    if (way != Point{}) drag_->last = putPointer(drag_->home);
    return way;
}

void PointerHold::confine(HWND window, std::optional<Rect> area) {
    if (!window) return;
    if (area) {
        const POINT topLeft = onScreen(window, {area->left, area->top});
        const RECT cage = systemRect(Rect::at(topLeft.x, topLeft.y, area->width(), area->height()));
        confined_ = ClipCursor(&cage) != FALSE;
    } else if (std::exchange(confined_, false)) {
        ClipCursor(nullptr);
    }
}

Point PointerHold::place(HWND window) const {
    return onWindow(window, drag_ ? drag_->start : pointerOnScreen());
}

void PointerHold::setCursor(PageCursor cursor) {
    cursor_ = cursor;
    showCursor();
}

void PointerHold::letGo(HWND window) {
    release(window);
    confine(window, {});
    if (cursor_ != PageCursor::arrow) setCursor(PageCursor::arrow);
}

}  // namespace marnoth
