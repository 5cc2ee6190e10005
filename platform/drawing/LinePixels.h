#pragma once

#include <cstdint>

#include "platform/drawing/Geometry.h"

namespace marnoth {

/// The pixels of a one-pixel line, in order from its beginning; the end point is left out.
///
/// Of every column of a flat line, and of every row of a steep one, the pixel nearest to the ideal line is
/// taken; between two that are equally near, the upper or the left one. So a line has the same pixels in both
/// directions, but for its own end. Visits nothing but the columns (or rows) of `area` and those within
/// `margin` of it: the work is bounded by the area, wherever the points are.
class LinePixels {
public:
    LinePixels(Point from, Point to, const Rect& area, int margin);

    bool atEnd() const { return step_ >= last_; }
    /// How many pixels of the whole line lie before this one.
    std::int64_t step() const { return step_; }
    /// May lie outside the area along the other axis. In 64 bits, since a margin may pass the ends of an int.
    std::int64_t x() const { return steep_ ? minor() : major(); }
    std::int64_t y() const { return steep_ ? major() : minor(); }
    void next();

private:
    /// A line along one axis: where it begins, how far it goes, and which way.
    struct Run {
        Run(int from, int to);
        std::int64_t begin;
        std::int64_t length;
        std::int64_t direction;
    };

    void limitTo(std::int64_t low, std::int64_t high);
    std::int64_t major() const { return along_.begin + along_.direction * step_; }
    std::int64_t minor() const;

    Run along_;
    Run across_;
    bool steep_ = false;
    std::int64_t step_ = 0;
    std::int64_t last_ = 0;
    // step_ * across_.length / along_.length, whole and rest.
    std::int64_t whole_ = 0;
    std::int64_t rest_ = 0;
};

}  // namespace marnoth
