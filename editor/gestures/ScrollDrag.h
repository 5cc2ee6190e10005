#pragma once

#include <span>
#include <vector>

#include "editor/PaneParent.h"
#include "editor/gestures/Gesture.h"

namespace marnoth {

class CGrooveScroller;

/// A scroll bar and the view that it scrolls.
struct ServingScroller {
    CGrooveScroller* scroller;
    Rect served;
};

/// The thumb of one of the page's scroll bars. Of several that are held only the first one moves.
class ScrollDrag final : public Gesture {
public:
    /// In the order in which they are tried; none is owned.
    ScrollDrag(PaneParent& page, std::vector<ServingScroller> scrollers);

    bool press(Point at, Modifiers held) override;
    void move(Point at, Modifiers held) override;
    /// Once more to the pointer, and then it is let go.
    void release(Point at, Modifiers held) override;
    void drop() override;

private:
    void invalidate(const ServingScroller& of);

    PaneParent& page_;
    std::vector<ServingScroller> scrollers_;
};

}  // namespace marnoth
