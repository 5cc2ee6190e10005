#pragma once

#include "platform/com/Com.h"
#include "platform/drawing/Geometry.h"

namespace marnoth {

inline Point pointOf(const POINT& point) {
    return {point.x, point.y};
}
/// The two halves that mouse messages come with; left of or above a window they are below 0.
inline Point pointOf(LPARAM halves) {
    return {static_cast<short>(LOWORD(halves)), static_cast<short>(HIWORD(halves))};
}
inline POINT systemPoint(Point point) {
    return {point.x, point.y};
}
inline Rect rectOf(const RECT& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}
inline RECT systemRect(const Rect& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

inline Point onWindow(HWND window, POINT onScreen) {
    ScreenToClient(window, &onScreen);
    return pointOf(onScreen);
}
inline POINT onScreen(HWND window, Point at) {
    POINT point = systemPoint(at);
    ClientToScreen(window, &point);
    return point;
}

}  // namespace marnoth
