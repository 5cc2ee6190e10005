#include "platform/drawing/LinePixels.h"

#include <algorithm>
#include <utility>

namespace marnoth {

LinePixels::Run::Run(int from, int to)
    : begin(from),
      length(to > from ? std::int64_t{to} - from : std::int64_t{from} - to),
      direction(to < from ? -1 : 1) {}

LinePixels::LinePixels(Point from, Point to, const Rect& area, int margin)
    : along_(from.x, to.x), across_(from.y, to.y), steep_(across_.length > along_.length), last_(0) {
    if (steep_) std::swap(along_, across_);
    last_ = along_.length;
    const std::int64_t low = steep_ ? area.top : area.left;
    const std::int64_t high = steep_ ? area.bottom : area.right;
    limitTo(low - margin, high + margin);
    if (atEnd()) return;
    // Both factors are below 2^32, so the product fits without a sign.
    const std::uint64_t product =
        static_cast<std::uint64_t>(step_) * static_cast<std::uint64_t>(across_.length);
    whole_ = static_cast<std::int64_t>(product / static_cast<std::uint64_t>(along_.length));
    rest_ = static_cast<std::int64_t>(product % static_cast<std::uint64_t>(along_.length));
}

void LinePixels::limitTo(std::int64_t low, std::int64_t high) {
    const bool forward = along_.direction > 0;
    const std::int64_t first = forward ? low - along_.begin : along_.begin - high + 1;
    const std::int64_t end = forward ? high - along_.begin : along_.begin - low + 1;
    step_ = std::max<std::int64_t>(step_, first);
    last_ = std::min(last_, end);
}

std::int64_t LinePixels::minor() const {
    const std::int64_t twice = 2 * rest_;
    const bool further = twice > along_.length || (twice == along_.length && across_.direction < 0);
    return across_.begin + across_.direction * (whole_ + (further ? 1 : 0));
}

void LinePixels::next() {
    ++step_;
    rest_ += across_.length;
    if (rest_ >= along_.length) {
        rest_ -= along_.length;
        ++whole_;
    }
}

}  // namespace marnoth
