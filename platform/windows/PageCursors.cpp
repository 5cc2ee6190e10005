#include "platform/windows/PageCursors.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/windows/Module.h"

namespace marnoth {

namespace {

constexpr std::size_t kSide = 32;  ///< pixels

/// An arrow with a plus in a box: '#' is black, '.' white, and through a blank one sees. The tip is at the
/// top left.
constexpr std::array<std::string_view, 29> kDragCopyPicture{
    "#",
    "##",
    "#.#",
    "#..#",
    "#...#",
    "#....#",
    "#.....#",
    "#......#",
    "#.......#",
    "#........#",
    "#.........#",
    "#......#####",
    "#...#..#",
    "#..# #..#",
    "#.#  #..#",
    "##    #..#",
    "#     #..#",
    "       ##",
    "            ###########",
    "            #.........#",
    "            #....#....#",
    "            #....#....#",
    "            #....#....#",
    "            #.#######.#",
    "            #....#....#",
    "            #....#....#",
    "            #....#....#",
    "            #.........#",
    "            ###########",
};

/// Two pictures of a bit for each pixel: what of the screen stays, and what is turned over on it.
struct Masks {
    std::array<std::uint8_t, kSide * kSide / 8> keep{};
    std::array<std::uint8_t, kSide * kSide / 8> turn{};
};

constexpr char pixelAt(std::size_t x, std::size_t y) {
    if (y >= kDragCopyPicture.size() || x >= kDragCopyPicture[y].size()) return ' ';
    return kDragCopyPicture[y][x];
}

constexpr Masks dragCopyMasks() {
    Masks masks;
    for (std::size_t y = 0; y < kSide; ++y)
        for (std::size_t x = 0; x < kSide; ++x) {
            const std::size_t byte = (y * kSide + x) / 8;
            const auto bit = static_cast<std::uint8_t>(0x80u >> (x % 8));
            if (pixelAt(x, y) == ' ') masks.keep[byte] |= bit;
            if (pixelAt(x, y) == '.') masks.turn[byte] |= bit;
        }
    return masks;
}

CursorHandle makeDragCopy() {
    static constexpr Masks kMasks = dragCopyMasks();
    return CursorHandle(
        CreateCursor(thisModule(), 0, 0, kSide, kSide, kMasks.keep.data(), kMasks.turn.data()));
}

}  // namespace

HCURSOR PageCursors::of(PageCursor cursor) {
    switch (cursor) {
        case PageCursor::none:
            return nullptr;
        case PageCursor::dragCopy:
            if (!dragCopy_) dragCopy_ = makeDragCopy();
            return dragCopy_.get();
        case PageCursor::sizeHorizontal:
            return LoadCursorW(nullptr, IDC_SIZEWE);
        case PageCursor::sizeVertical:
            return LoadCursorW(nullptr, IDC_SIZENS);
        default:
            return LoadCursorW(nullptr, IDC_ARROW);
    }
}

}  // namespace marnoth
