#pragma once

#include "editor/skin/Palette.h"
#include "platform/drawing/Geometry.h"

namespace marnoth {

class Surface;

/// A scroll bar that the page draws by itself: a thumb that can be dragged, and no paging by clicks.
class CGrooveScroller {
public:
    enum Orientation : int { kVertical = 0, kHorizontal = 1 };

    /// `total` is the length of the content in pixels, held to the page's length at least.
    void setUp(const Rect& track, Orientation orientation, int page, int total);

    /// Holds the three to each other and places the thumb. A negative total or page keeps the present one.
    void SetTrackPosition(int total, int position, int page);

    /// Moves the content, as far as there is any.
    void scrollBy(int pixels);

    /// True when the point is on the thumb, which is held from now on.
    bool BeginThumbDrag(Point point);
    /// Moves the content by what the pointer has moved since the press.
    void dragTo(Point point);
    void endDrag() { dragging_ = false; }

    const Rect& track() const { return track_; }
    const Rect& thumb() const { return thumb_; }
    int total() const { return total_; }
    int position() const { return position_; }
    int page() const { return page_; }
    bool isDragging() const { return dragging_; }

    void paint(Surface& surface) const;

private:
    Rect track_;
    Rect thumb_;
    Orientation orientation_ = kHorizontal;
    int total_ = 0;     ///< length of the content, pixels
    int position_ = 0;  ///< first pixel shown
    int page_ = 0;      ///< pixels shown
    bool dragging_ = false;
    Point press_;
    int pressPosition_ = 0;

    int trackLength() const;
    void placeThumb();
};

}  // namespace marnoth
