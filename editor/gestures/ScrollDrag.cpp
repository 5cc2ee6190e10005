#include "editor/gestures/ScrollDrag.h"

#include <utility>

#include "editor/controls/GrooveScroller.h"

namespace marnoth {

ScrollDrag::ScrollDrag(PaneParent& page, std::vector<ServingScroller> scrollers)
    : page_(page), scrollers_(std::move(scrollers)) {}

void ScrollDrag::invalidate(const ServingScroller& of) {
    page_.invalidate(of.scroller->track());
    page_.invalidate(of.served);
}

bool ScrollDrag::press(Point at, Modifiers) {
    for (const ServingScroller& each : scrollers_) {
        if (!each.scroller->BeginThumbDrag(at)) continue;
        setOpen(true);
        invalidate(each);
        return true;
    }
    return false;
}

void ScrollDrag::move(Point at, Modifiers) {
    for (const ServingScroller& each : scrollers_) {
        if (!each.scroller->isDragging()) continue;
        each.scroller->dragTo(at);
        return invalidate(each);
    }
}

void ScrollDrag::release(Point at, Modifiers held) {
    move(at, held);
    drop();
}

void ScrollDrag::drop() {
    for (const ServingScroller& each : scrollers_) each.scroller->endDrag();
    setOpen(false);
}

}  // namespace marnoth
