#include "platform/linux/X11Cursors.h"

#include <initializer_list>

namespace marnoth {

namespace {

/// The first that the theme has, by the names of desktops and of the core font; else the core font's `plain`.
::Cursor themed(::Display* display, std::initializer_list<const char*> names, unsigned plain) {
    for (const char* const name : names)
        if (const ::Cursor found = XcursorLibraryLoadCursor(display, name)) return found;
    return XCreateFontCursor(display, plain);
}

::Cursor invisible(X11Display& display) {
    const char nothing = 0;
    const Pixmap empty = XCreateBitmapFromData(display.get(), display.root(), &nothing, 1, 1);
    XColor black{};
    const ::Cursor cursor = XCreatePixmapCursor(display.get(), empty, empty, &black, &black, 0, 0);
    XFreePixmap(display.get(), empty);
    return cursor;
}

}  // namespace

X11Cursors::X11Cursors(X11Display& display) : display_(display) {
    const auto put = [this](PageCursor which, ::Cursor cursor) {
        cursors_[static_cast<std::size_t>(which)] = cursor;
    };
    ::Display* const d = display.get();
    put(PageCursor::arrow, themed(d, {"default", "left_ptr"}, XC_left_ptr));
    put(PageCursor::dragCopy, themed(d, {"dnd-copy", "copy"}, XC_plus));
    put(PageCursor::sizeHorizontal, themed(d, {"ew-resize", "sb_h_double_arrow"}, XC_sb_h_double_arrow));
    put(PageCursor::sizeVertical, themed(d, {"ns-resize", "sb_v_double_arrow"}, XC_sb_v_double_arrow));
    put(PageCursor::none, invisible(display));
}

X11Cursors::~X11Cursors() {
    for (const ::Cursor cursor : cursors_) XFreeCursor(display_.get(), cursor);
}

}  // namespace marnoth
