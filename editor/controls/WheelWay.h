#pragma once

#include "platform/drawing/PageWindow.h"

namespace marnoth {

/// Where clicks of the wheel scroll to: so many steps down, or to the right.
struct WheelWay {
    bool sideways;
    int steps;
};

/// A wheel that turns only one way reaches the other with Shift.
constexpr WheelWay wheelWay(WheelAxis axis, int steps, Modifiers held) {
    if (axis == WheelAxis::horizontal) return {true, steps};
    return {held.shift, -steps};
}

}  // namespace marnoth
