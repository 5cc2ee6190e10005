#include "platform/windows/DibScreen.h"

#include <algorithm>

#include "platform/windows/SystemGeometry.h"

namespace marnoth {

namespace {

/// Opaque, for those who look at the fourth byte.
std::uint32_t pixelOf(const Color& color) {
    return 0xFF000000u | std::uint32_t{color.red} << 16 | std::uint32_t{color.green} << 8 | color.blue;
}

BITMAPINFO descriptionOf(int width, int height) {
    BITMAPINFO description{};
    description.bmiHeader.biSize = sizeof description.bmiHeader;
    description.bmiHeader.biWidth = width;
    description.bmiHeader.biHeight = -height;  // the top row first
    description.bmiHeader.biPlanes = 1;
    description.bmiHeader.biBitCount = 32;
    description.bmiHeader.biCompression = BI_RGB;
    return description;
}

}  // namespace

bool DibScreen::resize(int width, int height) {
    *this = DibScreen();
    if (width <= 0 || height <= 0) return false;
    const BITMAPINFO description = descriptionOf(width, height);
    void* pixels = nullptr;
    device_ = DeviceHandle(CreateCompatibleDC(nullptr));
    bitmap_ = BitmapHandle(CreateDIBSection(nullptr, &description, DIB_RGB_COLORS, &pixels, nullptr, 0));
    if (!device_ || !bitmap_) return false;
    SelectObject(device_.get(), bitmap_.get());
    pixels_ = static_cast<std::uint32_t*>(pixels);
    width_ = width;
    height_ = height;
    return true;
}

bool DibScreen::take(const Bitmap& screen, const Rect& changed) {
    const bool isNew = screen.width() != width_ || screen.height() != height_;
    if (isNew && !resize(screen.width(), screen.height())) return false;
    const Rect area = isNew ? screen.bounds() : intersection(changed, screen.bounds());
    // What is still to be copied from the bitmap must be.
    GdiFlush();
    for (int y = area.top; y < area.bottom; ++y) {
        const auto row = screen.row(y).subspan(static_cast<std::size_t>(area.left),
                                               static_cast<std::size_t>(area.width()));
        std::ranges::transform(row, pixels_ + std::ptrdiff_t{y} * width_ + area.left, pixelOf);
    }
    return true;
}

void DibScreen::show(HDC device, const RECT& area) const {
    const Rect shown = intersection(rectOf(area), {0, 0, width_, height_});
    if (!shown.isEmpty())
        BitBlt(device, shown.left, shown.top, shown.width(), shown.height(), device_.get(), shown.left,
               shown.top, SRCCOPY);
    ExcludeClipRect(device, 0, 0, width_, height_);
    FillRect(device, &area, GetSysColorBrush(COLOR_BTNFACE));
}

}  // namespace marnoth
