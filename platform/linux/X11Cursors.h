#pragma once

#include <array>

#include "platform/drawing/CursorPicture.h"
#include "platform/linux/X11Display.h"

namespace marnoth {

/// The page's cursors: the arrow is the user's own, those with pictures are the page's, as large as its
/// pixels. One thread.
class X11Cursors {
public:
    /// `display` outlives it.
    X11Cursors(X11Display& display, const CursorPictures& pictures, int scale);
    ~X11Cursors();
    X11Cursors(const X11Cursors&) = delete;
    X11Cursors& operator=(const X11Cursors&) = delete;

    ::Cursor of(PageCursor cursor) const { return cursors_[static_cast<std::size_t>(cursor)]; }

private:
    X11Display& display_;
    std::array<::Cursor, 5> cursors_{};
};

}  // namespace marnoth
