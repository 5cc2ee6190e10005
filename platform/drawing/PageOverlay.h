#pragma once

#include "platform/drawing/Geometry.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth {

class Surface;

/// A dialog that lies over the page and has all of the user's input while it does. Its window paints it above
/// the page, anew behind each event.
///
/// Client pixels of the page. The window's thread.
class PageOverlay {
public:
    virtual ~PageOverlay() = default;

    /// What it covers, its shadow included.
    virtual Rect place() const = 0;
    virtual void paint(Surface& surface) = 0;

    // What the user does, as `PageEvents` says it.
    virtual void leftDown(Point at) = 0;
    virtual void leftUp(Point at) = 0;
    virtual void doubleClick(Point at) = 0;
    virtual void mouseMove(Point at) = 0;
    virtual void wheel(Point at, int steps) = 0;
    virtual void keyDown(int key, Modifiers held) = 0;
    virtual void character(char32_t character) = 0;
    /// Comes with the page's timer.
    virtual void timer() = 0;
};

}  // namespace marnoth
