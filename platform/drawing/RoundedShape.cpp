#include "platform/drawing/RoundedShape.h"

#include <algorithm>
#include <cstdlib>

namespace marnoth {

namespace {

// Products of four numbers of 32 bits.
__extension__ using Wide = unsigned __int128;

std::int64_t cornerOf(int wanted, std::int64_t room) {
    return std::clamp<std::int64_t>(wanted, 1, std::max<std::int64_t>(room, 1));
}

}  // namespace

RoundedShape::RoundedShape(const Rect& rect, int cornerWidth, int cornerHeight)
    : rect_(rect),
      cornerWidth_(cornerOf(cornerWidth, std::int64_t{rect.right} - rect.left)),
      cornerHeight_(cornerOf(cornerHeight, std::int64_t{rect.bottom} - rect.top)) {}

PixelSpan RoundedShape::row(std::int64_t y) const {
    if (rect_.isEmpty() || y < rect_.top || y >= rect_.bottom) return {};
    const std::int64_t cut = inset(std::min(y - rect_.top, rect_.bottom - 1 - y));
    return {rect_.left + cut, rect_.right - cut};
}

PixelSpan RoundedShape::inside(std::int64_t y, int border) const {
    PixelSpan left = row(y);
    for (std::int64_t away = -border; away <= border; ++away) {
        const PixelSpan neighbour = row(y + away);
        if (neighbour.isEmpty()) return {};
        const std::int64_t off = border - std::abs(away);
        left.begin = std::max(left.begin, neighbour.begin + off);
        left.end = std::min(left.end, neighbour.end - off);
    }
    return left.isEmpty() ? PixelSpan{} : left;
}

std::int64_t RoundedShape::inset(std::int64_t rowsFromEdge) const {
    if (rowsFromEdge >= (cornerHeight_ + 1) / 2) return 0;
    // The middle column always belongs to the corner, and behind the first that does so do all to the middle.
    std::int64_t low = 0;
    std::int64_t high = (cornerWidth_ - 1) / 2;
    while (low < high) {
        const std::int64_t middle = low + (high - low) / 2;
        if (cornerHas(middle, rowsFromEdge))
            high = middle;
        else
            low = middle + 1;
    }
    return low;
}

bool RoundedShape::cornerHas(std::int64_t column, std::int64_t row) const {
    // All in half pixels: the axes of the curve, and the pixel's distances from its centre.
    const Wide width = static_cast<Wide>(cornerWidth_ - 1);
    const Wide height = static_cast<Wide>(cornerHeight_ - 1);
    const Wide x = width - 2 * static_cast<Wide>(column);
    const Wide y = height - 2 * static_cast<Wide>(row);
    if (x <= 1 || y <= 1) return true;
    const bool alongRow = (x - 1) * (x - 1) * height * height <= width * width * (height * height - y * y);
    const bool alongColumn = (y - 1) * (y - 1) * width * width <= height * height * (width * width - x * x);
    return alongRow || alongColumn;
}

}  // namespace marnoth
