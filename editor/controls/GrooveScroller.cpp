#include "editor/controls/GrooveScroller.h"

#include <algorithm>
#include <cstdint>

#include "editor/Truncate.h"
#include "platform/drawing/Surface.h"

namespace marnoth {
namespace {

constexpr int kThumbCorner = 5;

int along(CGrooveScroller::Orientation orientation, Point point) {
    return orientation == CGrooveScroller::kHorizontal ? point.x : point.y;
}

}  // namespace

void CGrooveScroller::setUp(const Rect& track, Orientation orientation, int page, int total) {
    track_ = track;
    orientation_ = orientation;
    page_ = std::max(page, 0);
    dragging_ = false;
    SetTrackPosition(std::max(total, 0), 0, -1);
}

void CGrooveScroller::SetTrackPosition(int total, int position, int page) {
    total_ = std::max(total < 0 ? total_ : total, page_);
    if (page >= 0) page_ = std::min(total_, page);
    position_ = std::min(total_ - page_, std::max(position, 0));
    placeThumb();
}

int CGrooveScroller::trackLength() const {
    return orientation_ == kHorizontal ? track_.width() : track_.height();
}

void CGrooveScroller::placeThumb() {
    thumb_ = track_;
    if (total_ == 0) return;  // nothing to scroll: the thumb fills the track
    const std::int64_t length = trackLength();
    const int begin = static_cast<int>(length * position_ / total_);
    const int size = static_cast<int>(length * page_ / total_);
    if (orientation_ == kHorizontal) {
        thumb_.left = track_.left + begin;
        thumb_.right = thumb_.left + size;
    } else {
        thumb_.top = track_.top + begin;
        thumb_.bottom = thumb_.top + size;
    }
}

void CGrooveScroller::scrollBy(int pixels) {
    SetTrackPosition(-1, heldToFarPixel(std::int64_t{position_} + pixels), -1);
}

bool CGrooveScroller::BeginThumbDrag(Point point) {
    if (!track_.contains(point) || !thumb_.contains(point)) return false;
    press_ = point;
    pressPosition_ = position_;
    dragging_ = true;
    return true;
}

void CGrooveScroller::dragTo(Point point) {
    if (!dragging_ || trackLength() <= 0) return;
    const std::int64_t moved = std::int64_t{along(orientation_, point)} - along(orientation_, press_);
    const std::int64_t position = moved * total_ / trackLength() + pressPosition_;
    SetTrackPosition(total_, static_cast<int>(std::clamp<std::int64_t>(position, 0, total_)), page_);
}

void CGrooveScroller::paint(Surface& surface) const {
    surface.SelectPen({kPalette[3]});
    surface.SelectBrush(kPalette[3]);
    surface.Rectangle(track_);
    surface.SelectPen({kPalette[4]});
    surface.SelectBrush(kPalette[4]);
    surface.RoundRect(thumb_, kThumbCorner, kThumbCorner);
}

}  // namespace marnoth
