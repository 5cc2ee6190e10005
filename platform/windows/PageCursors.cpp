#include "platform/windows/PageCursors.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace marnoth {

namespace {

constexpr Color kShown{255, 255, 255};  ///< in a mask

bool shows(const CursorPicture& cursor, int x, int y) {
    return cursor.mask.at(x, y) == kShown;
}

/// A bit for each pixel, in rows of whole words, the first at the top: 1 where one sees through.
BitmapHandle maskOf(const CursorPicture& cursor) {
    const int width = cursor.mask.width();
    const int height = cursor.mask.height();
    const auto stride = static_cast<std::size_t>((width + 15) / 16 * 2);
    std::vector<std::uint8_t> bits(stride * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            if (!shows(cursor, x, y))
                bits[static_cast<std::size_t>(y) * stride + static_cast<std::size_t>(x / 8)] |=
                    static_cast<std::uint8_t>(0x80u >> (x % 8));
    return BitmapHandle(CreateBitmap(width, height, 1, 1, bits.data()));
}

/// 32 bits for each pixel; where one sees through they have no cover.
BitmapHandle pictureOf(const CursorPicture& cursor) {
    std::vector<std::uint32_t> pixels;
    pixels.reserve(static_cast<std::size_t>(cursor.picture.width()) *
                   static_cast<std::size_t>(cursor.picture.height()));
    for (int y = 0; y < cursor.picture.height(); ++y)
        for (int x = 0; x < cursor.picture.width(); ++x) {
            const Color color = cursor.picture.at(x, y);
            const std::uint32_t rgb = static_cast<std::uint32_t>(color.red) << 16 |
                                      static_cast<std::uint32_t>(color.green) << 8 | color.blue;
            pixels.push_back(shows(cursor, x, y) ? 0xFF000000u | rgb : 0);
        }
    return BitmapHandle(CreateBitmap(cursor.picture.width(), cursor.picture.height(), 1, 32, pixels.data()));
}

CursorHandle cursorOf(const CursorPicture& cursor) {
    const BitmapHandle mask = maskOf(cursor);
    const BitmapHandle picture = pictureOf(cursor);
    ICONINFO made{};
    made.fIcon = FALSE;
    made.xHotspot = static_cast<DWORD>(cursor.hotSpot.x);
    made.yHotspot = static_cast<DWORD>(cursor.hotSpot.y);
    made.hbmMask = mask.get();
    made.hbmColor = picture.get();
    return CursorHandle(CreateIconIndirect(&made));
}

HCURSOR systemCursor(PageCursor cursor) {
    switch (cursor) {
        case PageCursor::none:
            return nullptr;
        case PageCursor::sizeHorizontal:
            return LoadCursorW(nullptr, IDC_SIZEWE);
        case PageCursor::sizeVertical:
            return LoadCursorW(nullptr, IDC_SIZENS);
        default:
            return LoadCursorW(nullptr, IDC_ARROW);
    }
}

bool hasPicture(PageCursor cursor) {
    return cursor == PageCursor::dragCopy || cursor == PageCursor::sizeHorizontal ||
           cursor == PageCursor::sizeVertical;
}

}  // namespace

HCURSOR PageCursors::of(PageCursor cursor) {
    if (!pictures_ || !hasPicture(cursor)) return systemCursor(cursor);
    CursorHandle& made = made_[cursor];
    if (!made) made = cursorOf(pictures_(cursor));
    return made ? made.get() : systemCursor(cursor);
}

}  // namespace marnoth
