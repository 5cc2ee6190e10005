#include "platform/linux/X11Cursors.h"

#include <memory>

namespace marnoth {

namespace {

::Cursor arrow(::Display* display) {
    const ::Cursor themed = XcursorLibraryLoadCursor(display, "left_ptr");
    return themed ? themed : XCreateFontCursor(display, XC_left_ptr);
}

struct ImageFreed {
    void operator()(XcursorImage* image) const { XcursorImageDestroy(image); }
};

/// Blue, green, red and cover, from the lowest byte up.
XcursorPixel packed(Color color) {
    return 0xFF000000u | static_cast<XcursorPixel>(color.red) << 16 |
           static_cast<XcursorPixel>(color.green) << 8 | color.blue;
}

::Cursor pictured(::Display* display, const CursorPicture& cursor, int scale) {
    const int width = cursor.picture.width() * scale;
    const int height = cursor.picture.height() * scale;
    const std::unique_ptr<XcursorImage, ImageFreed> image(XcursorImageCreate(width, height));
    if (!image) return XCreateFontCursor(display, XC_left_ptr);
    image->xhot = static_cast<XcursorDim>(cursor.hotSpot.x * scale);
    image->yhot = static_cast<XcursorDim>(cursor.hotSpot.y * scale);
    XcursorPixel* to = image->pixels;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const bool shows = cursor.mask.at(x / scale, y / scale) != Color{};
            *to++ = shows ? packed(cursor.picture.at(x / scale, y / scale)) : 0;
        }
    return XcursorImageLoadCursor(display, image.get());
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

X11Cursors::X11Cursors(X11Display& display, const CursorPictures& pictures, int scale) : display_(display) {
    const auto place = [this](PageCursor which) -> ::Cursor& {
        return cursors_[static_cast<std::size_t>(which)];
    };
    place(PageCursor::arrow) = arrow(display.get());
    place(PageCursor::none) = invisible(display);
    for (const PageCursor which :
         {PageCursor::dragCopy, PageCursor::sizeHorizontal, PageCursor::sizeVertical})
        place(which) = pictured(display.get(), pictures(which), scale);
}

X11Cursors::~X11Cursors() {
    for (const ::Cursor cursor : cursors_) XFreeCursor(display_.get(), cursor);
}

}  // namespace marnoth
