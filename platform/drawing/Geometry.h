#pragma once

#include <algorithm>

namespace marnoth {

/// Pixels, counted from the top left corner to the right and down.
struct Point {
    int x = 0;
    int y = 0;

    friend bool operator==(const Point&, const Point&) = default;
};

/// A rectangle of pixels; the right and the bottom edge are outside.
struct Rect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    /// By the corner and the size.
    static constexpr Rect at(int x, int y, int width, int height) { return {x, y, x + width, y + height}; }

    constexpr int width() const { return right - left; }
    constexpr int height() const { return bottom - top; }
    constexpr bool isEmpty() const { return left >= right || top >= bottom; }
    constexpr bool contains(Point p) const {
        return left <= p.x && p.x < right && top <= p.y && p.y < bottom;
    }
    constexpr Rect movedBy(int x, int y) const { return {left + x, top + y, right + x, bottom + y}; }
    friend constexpr bool operator==(const Rect&, const Rect&) = default;
};

/// What lies in both; empty when they don't meet.
constexpr Rect intersection(const Rect& a, const Rect& b) {
    const Rect both{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                    std::min(a.bottom, b.bottom)};
    return both.isEmpty() ? Rect{} : both;
}
constexpr bool meet(const Rect& a, const Rect& b) {
    return !intersection(a, b).isEmpty();
}

}  // namespace marnoth
