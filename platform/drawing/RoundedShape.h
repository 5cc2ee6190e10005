#pragma once

#include <cstdint>

#include "platform/drawing/Geometry.h"

namespace marnoth {

/// Pixels of one row, the end outside.
struct PixelSpan {
    std::int64_t begin = 0;
    std::int64_t end = 0;

    bool isEmpty() const { return begin >= end; }
};

/// A rectangle with rounded corners, row by row: a plain one has corners of one pixel, an ellipse has corners
/// as large as itself.
///
/// The corners are quarters of the ellipse whose outermost pixels touch the edges: a pixel belongs to it if
/// it lies within half a pixel of the ideal curve through the centres of those, along its row or along its
/// column. Exact for all sizes that fit a Rect; nothing depends on the size but the doublings of a search.
class RoundedShape {
public:
    /// Corners are diameters; more than the rectangle has counts as all of it, less than 1 as 1.
    RoundedShape(const Rect& rect, int cornerWidth, int cornerHeight);

    /// The shape's pixels in row `y`.
    PixelSpan row(std::int64_t y) const;
    /// What is left of row `y` when a border of so many pixels is taken off all around. Borders of one pixel
    /// touch at corners where they bend.
    PixelSpan inside(std::int64_t y, int border) const;

private:
    std::int64_t inset(std::int64_t rowsFromEdge) const;
    bool cornerHas(std::int64_t column, std::int64_t row) const;

    Rect rect_;
    std::int64_t cornerWidth_;
    std::int64_t cornerHeight_;
};

}  // namespace marnoth
