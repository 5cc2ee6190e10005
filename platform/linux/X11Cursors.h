#pragma once

#include <array>

#include "platform/drawing/PageWindow.h"
#include "platform/linux/X11Display.h"

namespace marnoth {

/// The page's cursors, in the user's own theme where it has them. One thread.
class X11Cursors {
public:
    /// `display` outlives it.
    explicit X11Cursors(X11Display& display);
    ~X11Cursors();
    X11Cursors(const X11Cursors&) = delete;
    X11Cursors& operator=(const X11Cursors&) = delete;

    ::Cursor of(PageCursor cursor) const { return cursors_[static_cast<std::size_t>(cursor)]; }

private:
    X11Display& display_;
    std::array<::Cursor, 5> cursors_{};
};

}  // namespace marnoth
