#include "platform/linux/X11Pointer.h"

namespace marnoth {

X11Pointer::X11Pointer(X11Display& display, ::Window window, const CursorPictures& pictures, int scale)
    : display_(display), window_(window), pictures_(pictures) {
    setScale(scale);
}

X11Pointer::~X11Pointer() {
    XUngrabPointer(display_.get(), CurrentTime);
}

void X11Pointer::setScale(int scale) {
    cursors_.emplace(display_, pictures_, scale);
    show(cursor_);
}

void X11Pointer::show(PageCursor cursor) {
    cursor_ = cursor;
    XDefineCursor(display_.get(), window_, cursors_->of(cursor));
    // While the mouse is held its cursor is the grab's.
    if (captured_ || relative_ || fence_) grab();
}

void X11Pointer::grab() {
    if (!captured_ && !relative_ && !fence_) {
        XUngrabPointer(display_.get(), CurrentTime);
        return;
    }
    constexpr unsigned kEvents = ButtonPressMask | ButtonReleaseMask | PointerMotionMask;
    XGrabPointer(display_.get(), window_, kXFalse, kEvents, GrabModeAsync, GrabModeAsync, fence_,
                 cursors_->of(cursor_), CurrentTime);
}

void X11Pointer::capture(bool on) {
    captured_ = on;
    grab();
}

void X11Pointer::confine(std::optional<Rect> area) {
    const ::Window former = fence_;
    fence_ = kXNone;
    if (area && !area->isEmpty()) {
        fence_ = XCreateWindow(display_.get(), window_, area->left, area->top,
                               static_cast<unsigned>(area->width()), static_cast<unsigned>(area->height()), 0,
                               0, InputOnly, nullptr, 0, nullptr);
        XMapWindow(display_.get(), fence_);
    }
    grab();
    if (former) XDestroyWindow(display_.get(), former);
}

Point X11Pointer::place() const {
    ::Window root = 0;
    ::Window child = 0;
    Point onRoot;
    Point at;
    unsigned held = 0;
    XQueryPointer(display_.get(), window_, &root, &child, &onRoot.x, &onRoot.y, &at.x, &at.y, &held);
    return at;
}

void X11Pointer::beginRelative(PageCursor shown) {
    relative_ = true;
    motion_.begin(place());
    returnSerial_ = 0;
    show(shown);
}

void X11Pointer::endRelative() {
    if (!relative_) return;
    putBack();
    relative_ = captured_ = false;
    show(PageCursor::arrow);
    grab();
}

void X11Pointer::putBack() {
    returnSerial_ = NextRequest(display_.get());
    XWarpPointer(display_.get(), kXNone, window_, 0, 0, 0, 0, motion_.home().x, motion_.home().y);
}

Point X11Pointer::distanceOf(const XMotionEvent& event) {
    const RelativeMotion::Step step = motion_.moved({event.x, event.y}, event.serial >= returnSerial_);
    if (step.putBack) putBack();
    return step.distance;
}

}  // namespace marnoth
