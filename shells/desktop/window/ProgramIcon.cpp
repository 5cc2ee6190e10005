#include "shells/desktop/window/ProgramIcon.h"

#include <bit>
#include <cstddef>
#include <cstring>
#include <span>

extern "C" {
extern const std::byte marnoth_icon_bytes[];
}

namespace marnoth {

namespace {

static_assert(std::endian::native == std::endian::little, "the fields of an icon file are read as they lie");

constexpr std::size_t kFileHead = 6;
constexpr std::size_t kEntry = 16;
constexpr std::size_t kBitmapHead = 40;

/// A field of the file, which the build put in and which therefore is whole.
template <class Number>
Number at(std::size_t offset) {
    Number number;
    std::memcpy(&number, marnoth_icon_bytes + offset, sizeof number);
    return number;
}

/// A bitmap of 32 bits, whose rows lie from the bottom up.
IconPicture bitmapAt(std::size_t offset) {
    IconPicture icon{at<std::uint32_t>(offset + 4), {}};
    icon.pixels.resize(std::size_t{icon.size} * icon.size);
    const std::size_t rowBytes = std::size_t{icon.size} * 4;
    for (std::size_t y = 0; y < icon.size; ++y)
        std::memcpy(icon.pixels.data() + y * icon.size,
                    marnoth_icon_bytes + offset + kBitmapHead + (icon.size - 1 - y) * rowBytes, rowBytes);
    return icon;
}

}  // namespace

std::vector<IconPicture> programIcon() {
    std::vector<IconPicture> icons;
    const std::size_t count = at<std::uint16_t>(4);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t offset = at<std::uint32_t>(kFileHead + i * kEntry + 12);
        // The largest is a PNG, for lists of programs, which have files of their own.
        if (at<std::uint32_t>(offset) == kBitmapHead) icons.push_back(bitmapAt(offset));
    }
    return icons;
}

}  // namespace marnoth
