#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "platform/drawing/Geometry.h"

namespace marnoth {

/// Without initial values, so that pictures are copied in one piece: `Color{}` is black.
struct Color {
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;

    friend bool operator==(const Color&, const Color&) = default;
};

/// A picture in memory, top row first. Copies copy the pixels.
class Bitmap {
public:
    Bitmap() = default;
    Bitmap(int width, int height, Color color = {});

    int width() const { return width_; }
    int height() const { return height_; }
    Rect bounds() const { return {0, 0, width_, height_}; }
    /// Both in range.
    Color& at(int x, int y) { return pixels_[index(x, y)]; }
    const Color& at(int x, int y) const { return pixels_[index(x, y)]; }
    /// The pixels of a row, left to right.
    std::span<Color> row(int y) { return {&pixels_[index(0, y)], static_cast<std::size_t>(width_)}; }
    std::span<const Color> row(int y) const {
        return {&pixels_[index(0, y)], static_cast<std::size_t>(width_)};
    }

    friend bool operator==(const Bitmap&, const Bitmap&) = default;

private:
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
    }

    int width_ = 0;
    int height_ = 0;
    std::vector<Color> pixels_;
};

/// Reads an uncompressed 24-bit BMP file, stored from the bottom up or from the top down. Nothing for
/// anything else, or when bytes are missing: no more memory is taken than the file has bytes for.
std::optional<Bitmap> readBmp(std::span<const std::byte> file);
/// The bytes of a 24-bit BMP file, stored from the bottom up. A bitmap without pixels gives a file without.
std::vector<std::byte> writeBmp(const Bitmap& bitmap);

}  // namespace marnoth
