#include "platform/linux/X11Screen.h"

#include <algorithm>
#include <bit>

namespace marnoth {

X11Screen::Channel X11Screen::channelOf(unsigned long mask) {
    return {std::countr_zero(mask), std::popcount(mask)};
}

X11Screen::X11Screen(X11Display& display, ::Window window, int scale)
    : display_(display),
      window_(window),
      scale_(scale),
      context_(XCreateGC(display.get(), window, 0, nullptr)),
      red_(channelOf(display.visual()->red_mask)),
      green_(channelOf(display.visual()->green_mask)),
      blue_(channelOf(display.visual()->blue_mask)) {}

X11Screen::~X11Screen() {
    XFreeGC(display_.get(), context_);
}

void X11Screen::enlarge(const Bitmap& picture, const Rect& area) {
    const auto scale = static_cast<std::size_t>(scale_);
    const std::size_t across = static_cast<std::size_t>(area.width()) * scale;
    pixels_.resize(across * static_cast<std::size_t>(area.height()) * scale);
    auto to = pixels_.begin();
    for (int y = area.top; y < area.bottom; ++y) {
        const auto row = to;
        for (int x = area.left; x < area.right; ++x) to = std::fill_n(to, scale, packed(picture.at(x, y)));
        for (std::size_t copy = 1; copy < scale; ++copy) to = std::copy_n(row, across, to);
    }
}

void X11Screen::show(const Bitmap& picture, const Rect& wanted) {
    const Rect area = intersection(wanted, picture.bounds());
    if (area.isEmpty()) return;
    enlarge(picture, area);
    XImage image{};
    image.width = area.width() * scale_;
    image.height = area.height() * scale_;
    image.format = ZPixmap;
    image.data = reinterpret_cast<char*>(pixels_.data());
    image.byte_order = std::endian::native == std::endian::little ? LSBFirst : MSBFirst;
    image.bitmap_unit = image.bitmap_pad = image.bits_per_pixel = 32;
    image.bitmap_bit_order = image.byte_order;
    image.depth = display_.depth();
    image.bytes_per_line = image.width * 4;
    XInitImage(&image);
    XPutImage(display_.get(), window_, context_, &image, 0, 0, area.left * scale_, area.top * scale_,
              static_cast<unsigned>(image.width), static_cast<unsigned>(image.height));
}

}  // namespace marnoth
