#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/drawing/PageWindow.h"
#include "platform/linux/X11Display.h"

namespace marnoth {

/// Files that are dragged onto a window from other programs, by XDND as far as its version 5
/// (freedesktop.org, "Drag-and-Drop Protocol for the X Window System"). One thread.
class X11Drop {
public:
    /// Who is told. Gives null while nothing may reach the page: then nothing can be dropped.
    using Page = std::function<PageEvents*()>;
    /// Makes pixels of the page of pixels of the window.
    using ToPage = std::function<Point(Point)>;

    /// `display` outlives it. Says on `window` that it takes drops.
    X11Drop(X11Display& display, ::Window window, Page page, ToPage toPage);

    /// False for an event that is nothing of a drag's.
    bool handle(const XEvent& event);

private:
    void enter(const XClientMessageEvent& message);
    void position(const XClientMessageEvent& message);
    void leave();
    void drop(const XClientMessageEvent& message);
    void received(const XSelectionEvent& event);
    void finished(DropEffect effect);
    /// Tells the program that drags.
    void answer(const char* message, long flags, Atom action);
    void forget();
    Atom inbox() { return display_.atom("MARNOTH_DROP"); }

    X11Display& display_;
    const ::Window window_;
    const Page page_;
    const ToPage toPage_;
    ::Window source_ = kXNone;  ///< the program that drags, while it is over the window
    bool hasFiles_ = false;
    bool entered_ = false;  ///< the page knows of it
    Point at_;              ///< pixels of the page
};

}  // namespace marnoth
