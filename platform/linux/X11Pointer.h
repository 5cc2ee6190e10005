#pragma once

#include <optional>

#include "platform/drawing/Geometry.h"
#include "platform/drawing/PageWindow.h"
#include "platform/linux/RelativeMotion.h"
#include "platform/linux/X11Cursors.h"
#include "platform/linux/X11Display.h"

namespace marnoth {

/// The mouse of a window: its cursor, and what the page asks of it. Pixels of the screen, from the window's
/// corner. One thread.
class X11Pointer {
public:
    /// `display` outlives it.
    X11Pointer(X11Display& display, ::Window window, const CursorPictures& pictures, int scale);
    ~X11Pointer();
    X11Pointer(const X11Pointer&) = delete;
    X11Pointer& operator=(const X11Pointer&) = delete;

    /// The page's own cursors are as large as its pixels.
    void setScale(int scale);
    void show(PageCursor cursor);
    void capture(bool on);
    void confine(std::optional<Rect> area);
    Point place() const;

    void beginRelative(PageCursor shown);
    /// The mouse is back where the drag began.
    void endRelative();
    bool isRelative() const { return relative_; }
    /// How far a motion of a relative drag goes.
    Point distanceOf(const XMotionEvent& event);

private:
    /// Holds or lets go of the mouse, as capture, drag and area want it now.
    void grab();
    void putBack();

    X11Display& display_;
    const ::Window window_;
    const CursorPictures pictures_;
    std::optional<X11Cursors> cursors_;
    PageCursor cursor_ = PageCursor::arrow;
    ::Window fence_ = kXNone;  ///< a window without a picture that the mouse stays in
    RelativeMotion motion_;
    unsigned long returnSerial_ = 0;  ///< of the request that put the mouse back last
    bool captured_ = false;
    bool relative_ = false;
};

}  // namespace marnoth
