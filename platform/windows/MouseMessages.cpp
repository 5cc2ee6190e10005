#include "platform/windows/MouseMessages.h"

#include <utility>

#include "platform/windows/KeyMessages.h"
#include "platform/windows/SystemGeometry.h"

namespace marnoth {

MessageAnswer MouseMessages::answer(HWND window, const WindowMessage& message) {
    const MessageAnswer answer = answerButtons(window, message);
    return answer ? answer : answerPointer(window, message);
}

MessageAnswer MouseMessages::answerButtons(HWND window, const WindowMessage& message) {
    switch (message.id) {
        case WM_LBUTTONDOWN:
            isLeftDown_ = true;
            press(window, &PageEvents::leftDown, message.second);
            return 0;
        case WM_LBUTTONDBLCLK:
            isLeftDown_ = true;
            press(window, &PageEvents::doubleClick, message.second);
            return 0;
        case WM_LBUTTONUP:
            isLeftDown_ = false;
            tell(window, &PageEvents::leftUp, message.second);
            return 0;
        case WM_RBUTTONDOWN:
        case WM_RBUTTONDBLCLK:
            press(window, &PageEvents::rightDown, message.second);
            return 0;
        case WM_CONTEXTMENU:
            contextMenu(window, message.second);
            return 0;
        default:
            return {};
    }
}

MessageAnswer MouseMessages::answerPointer(HWND window, const WindowMessage& message) {
    switch (message.id) {
        case WM_MOUSEMOVE:
            moved(window, message);
            return 0;
        case WM_MOUSEWHEEL:
            return wheel(window, WheelAxis::vertical, vertical_, message);
        case WM_MOUSEHWHEEL:
            return wheel(window, WheelAxis::horizontal, horizontal_, message);
        case WM_CAPTURECHANGED:
            captureChanged(window, message.second);
            return 0;
        case WM_SHOWWINDOW:
            // Hidden, no window keeps the mouse.
            if (!message.first && pointer_.isCaptured()) ReleaseCapture();
            return {};
        case WM_SETCURSOR:
            if (LOWORD(message.second) != HTCLIENT) return {};
            pointer_.showCursor();
            return TRUE;
        default:
            return {};
    }
}

void MouseMessages::press(HWND window, Event event, LPARAM at) {
    keyboard_.take(window);
    tell(window, event, at);
}

void MouseMessages::tell(HWND window, Event event, LPARAM at) {
    const Point place = pointer_.isRelative() ? pointer_.place(window) : pointOf(at);
    if (PageEvents* const page = listener_()) (page->*event)(place, heldModifiers());
}

void MouseMessages::moved(HWND window, const WindowMessage& message) {
    noticeLostRelease(message.first);
    if (!pointer_.isRelative()) return tell(window, &PageEvents::mouseMove, message.second);
    const Point way = pointer_.distance();
    PageEvents* const page = listener_();
    if (page && way != Point{}) page->relativeMove(way, heldModifiers());
}

/// A button may be let go where nobody hears of it, as on a locked screen: a press that held the mouse is
/// over then, or its pad would sound on.
void MouseMessages::noticeLostRelease(WPARAM buttons) {
    if ((buttons & MK_LBUTTON) != 0) return;
    if (std::exchange(isLeftDown_, false) && pointer_.isCaptured()) ReleaseCapture();
}

void MouseMessages::contextMenu(HWND window, LPARAM at) {
    // Asked for by the keyboard, where there is no place.
    if (at == -1) return;
    const Point place = onWindow(window, systemPoint(pointOf(at)));
    if (PageEvents* const page = listener_()) page->contextMenu(place, heldModifiers());
}

/// Over another window it is for the system, which finds that one.
MessageAnswer MouseMessages::wheel(HWND window, WheelAxis axis, WheelParts& parts,
                                   const WindowMessage& message) {
    const Point place = onWindow(window, systemPoint(pointOf(message.second)));
    RECT room{};
    GetClientRect(window, &room);
    if (!pointer_.isCaptured() && !rectOf(room).contains(place)) return {};
    const int steps = parts.take(GET_WHEEL_DELTA_WPARAM(message.first));
    PageEvents* const page = listener_();
    if (page && steps != 0) page->wheel(place, axis, steps, heldModifiers());
    return 0;
}

void MouseMessages::captureChanged(HWND window, LPARAM to) {
    if (reinterpret_cast<HWND>(to) == window || !pointer_.lost()) return;
    if (PageEvents* const page = listener_()) page->captureLost();
}

}  // namespace marnoth
