#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/drawing/RasterSurface.h"

namespace marnoth::test {

using Rows = std::vector<std::string>;

inline constexpr Color kBlank{0, 0, 0};
inline constexpr Color kPenColor{255, 255, 255};
inline constexpr Color kFillColor{10, 20, 30};
inline constexpr Color kGroundColor{40, 50, 60};

/// A small bitmap with a surface, read back as rows of text: '.' blank, '#' the pen, 'o' the brush, '-' the
/// ground,
/// '?' anything else. Begins blank, with the pen in its colour, no brush, and the ground in its.
class Canvas {
public:
    Canvas(int width, int height) : bitmap(width, height), surface(bitmap) {
        surface.SelectPen({kPenColor});
        surface.SetGroundColor(kGroundColor);
    }

    /// The surface with the brush in its colour.
    RasterSurface& filled() {
        surface.SelectBrush(kFillColor);
        return surface;
    }

    Rows rows() const {
        Rows rows;
        for (int y = 0; y < bitmap.height(); ++y) {
            rows.emplace_back();
            for (const Color& pixel : bitmap.row(y)) rows.back() += letterOf(pixel);
        }
        return rows;
    }

    Bitmap bitmap;
    RasterSurface surface;

private:
    static char letterOf(Color color) {
        if (color == kBlank) return '.';
        if (color == kPenColor) return '#';
        if (color == kFillColor) return 'o';
        return color == kGroundColor ? '-' : '?';
    }
};

/// A bitmap whose pixels are all different: red is the column, green the row.
inline Bitmap numbered(int width, int height) {
    Bitmap bitmap(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            bitmap.at(x, y) = {static_cast<std::uint8_t>(x), static_cast<std::uint8_t>(y), 99};
    return bitmap;
}

}  // namespace marnoth::test
