#pragma once

#include <cstdlib>

#include "platform/drawing/Geometry.h"

namespace marnoth {

/// Grains that are dragged over the Pad Editor, all those selected. Client pixels.
struct GrainDrag {
    bool active = false;
    Point press;
    Point current;  ///< where the pointer counts to be: snapped
    Point grab;     ///< the press, from the grain's left and the row's top
    int pad = -1;   ///< of the grain that was pressed
    int grain = -1;

    /// Near enough to the press to count as a click.
    bool isNearPress(Point at) const {
        constexpr int kDeadZone = 5;
        return std::abs(at.x - press.x) < kDeadZone && std::abs(at.y - press.y) < kDeadZone;
    }
};

/// The mark of a pad's loop length that is dragged. Client pixels.
struct LengthDrag {
    bool active = false;
    Point press;
    int currentX = 0;  ///< snapped
    int grabX = 0;     ///< the press, from the mark
    int pad = -1;
};

/// The grain under the pointer.
struct GrainHover {
    bool active = false;
    int pad = -1;
    int grain = -1;
    /// A grain of the strip is held over it: the strip shows what would be replaced, and this is what it
    /// showed before.
    bool replaced = false;
    int savedFile = -1;
    int savedGrain = -1;
};

}  // namespace marnoth
