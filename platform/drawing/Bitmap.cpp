#include "platform/drawing/Bitmap.h"

#include <algorithm>
#include <limits>

namespace marnoth {

namespace {

// The file's header and the information header behind it, as "Bitmap Storage" in the Windows documentation
// lays them out; numbers are little-endian.
constexpr std::uint64_t kFileHeaderBytes = 14;
constexpr std::uint64_t kInformationBytes = 40;
constexpr std::uint64_t kBothHeadersBytes = kFileHeaderBytes + kInformationBytes;
constexpr std::uint32_t kPixelsPerMeter = 2835;  // 72 to the inch

std::uint32_t numberAt(std::span<const std::byte> bytes, std::size_t at, int size) {
    std::uint32_t value = 0;
    for (int i = size; i-- > 0;) value = value << 8 | std::to_integer<std::uint32_t>(bytes[at + i]);
    return value;
}

void putNumber(std::vector<std::byte>& bytes, std::uint64_t value, int size) {
    for (int i = 0; i < size; ++i) bytes.push_back(static_cast<std::byte>(value >> 8 * i & 0xFF));
}

/// Rows are padded to whole groups of four bytes.
std::uint64_t bytesPerRow(std::uint64_t width) {
    return (width * 3 + 3) / 4 * 4;
}

/// What the headers say, checked against the bytes that are there.
struct Layout {
    int width = 0;
    int height = 0;
    bool bottomUp = true;
    std::uint64_t pixels = 0;  ///< where the first row in the file begins
};

std::optional<Layout> readLayout(std::span<const std::byte> file) {
    if (file.size() < kBothHeadersBytes || numberAt(file, 0, 2) != 0x4D42) return {};
    const std::uint64_t pixels = numberAt(file, 10, 4);
    const std::uint64_t informationBytes = numberAt(file, 14, 4);
    const auto width = static_cast<std::int32_t>(numberAt(file, 18, 4));
    const auto height = static_cast<std::int32_t>(numberAt(file, 22, 4));
    const bool plain =
        numberAt(file, 26, 2) == 1 && numberAt(file, 28, 2) == 24 && numberAt(file, 30, 4) == 0;
    if (!plain || informationBytes < kInformationBytes || pixels < kFileHeaderBytes + informationBytes)
        return {};
    if (width <= 0 || height == 0 || height == std::numeric_limits<std::int32_t>::min()) return {};
    const int rows = height < 0 ? -height : height;
    if (pixels > file.size()) return {};
    if (static_cast<std::uint64_t>(rows) > (file.size() - pixels) / bytesPerRow(width)) return {};
    return Layout{width, rows, height > 0, pixels};
}

}  // namespace

Bitmap::Bitmap(int width, int height, Color color)
    : width_(std::max(width, 0)),
      height_(std::max(height, 0)),
      pixels_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_), color) {}

std::optional<Bitmap> readBmp(std::span<const std::byte> file) {
    const std::optional<Layout> layout = readLayout(file);
    if (!layout) return {};
    Bitmap bitmap(layout->width, layout->height);
    const std::uint64_t stride = bytesPerRow(static_cast<std::uint64_t>(layout->width));
    for (int y = 0; y < layout->height; ++y) {
        const int rowInFile = layout->bottomUp ? layout->height - 1 - y : y;
        std::uint64_t at = layout->pixels + stride * static_cast<std::uint64_t>(rowInFile);
        for (Color& pixel : bitmap.row(y)) {
            pixel.blue = std::to_integer<std::uint8_t>(file[at++]);
            pixel.green = std::to_integer<std::uint8_t>(file[at++]);
            pixel.red = std::to_integer<std::uint8_t>(file[at++]);
        }
    }
    return bitmap;
}

std::vector<std::byte> writeBmp(const Bitmap& bitmap) {
    const std::uint64_t stride = bytesPerRow(static_cast<std::uint64_t>(bitmap.width()));
    const std::uint64_t pixelBytes = stride * static_cast<std::uint64_t>(bitmap.height());
    std::vector<std::byte> file;
    file.reserve(kBothHeadersBytes + pixelBytes);
    putNumber(file, 0x4D42, 2);
    putNumber(file, kBothHeadersBytes + pixelBytes, 4);
    putNumber(file, 0, 4);
    putNumber(file, kBothHeadersBytes, 4);
    putNumber(file, kInformationBytes, 4);
    putNumber(file, static_cast<std::uint64_t>(bitmap.width()), 4);
    putNumber(file, static_cast<std::uint64_t>(bitmap.height()), 4);
    putNumber(file, 1, 2);
    putNumber(file, 24, 2);
    putNumber(file, 0, 4);
    putNumber(file, pixelBytes, 4);
    putNumber(file, kPixelsPerMeter, 4);
    putNumber(file, kPixelsPerMeter, 4);
    putNumber(file, 0, 8);
    for (int y = bitmap.height(); y-- > 0;) {
        for (const Color& pixel : bitmap.row(y))
            for (const std::uint8_t part : {pixel.blue, pixel.green, pixel.red})
                file.push_back(static_cast<std::byte>(part));
        const std::uint64_t padding = stride - static_cast<std::uint64_t>(bitmap.width()) * 3;
        file.insert(file.end(), static_cast<std::size_t>(padding), std::byte{0});
    }
    return file;
}

}  // namespace marnoth
