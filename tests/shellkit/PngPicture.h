#pragma once

#ifndef _WIN32
#include <png.h>
#endif

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/drawing/Bitmap.h"
#include "shellkit/TempFolder.h"

namespace marnoth::test {

/// What the beginning of a PNG file says about it; nothing when it isn't one.
struct PngHeader {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    int bitDepth = 0;
    int colorType = 0;  ///< 2 for red, green and blue
};

inline std::optional<PngHeader> pngHeader(const std::filesystem::path& path) {
    constexpr std::string_view kSignature = "\x89PNG\r\n\x1A\n";
    const std::string bytes = readText(path);
    if (bytes.size() < 33 || !bytes.starts_with(kSignature) || bytes.substr(12, 4) != "IHDR") return {};
    const auto byte = [&](std::size_t at) { return static_cast<std::uint8_t>(bytes[at]); };
    const auto number = [&](std::size_t at) {
        return std::uint32_t{byte(at)} << 24 | byte(at + 1) << 16 | byte(at + 2) << 8 | byte(at + 3);
    };
    return PngHeader{number(16), number(20), byte(24), byte(25)};
}

/// The names of a PNG file's chunks, in their order.
inline std::vector<std::string> pngChunks(const std::filesystem::path& path) {
    const std::string bytes = readText(path);
    std::vector<std::string> names;
    for (std::size_t at = 8; at + 8 <= bytes.size();) {
        std::size_t length = 0;
        for (std::size_t i = 0; i < 4; ++i) length = length << 8 | static_cast<std::uint8_t>(bytes[at + i]);
        names.push_back(bytes.substr(at + 4, 4));
        at += length + 12;
    }
    return names;
}

#ifndef _WIN32
/// Without pixels when the file can't be read.
inline Bitmap readPng(const std::filesystem::path& path) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str())) return {};
    image.format = PNG_FORMAT_RGB;
    Bitmap picture(static_cast<int>(image.width), static_cast<int>(image.height));
    const bool done = png_image_finish_read(&image, nullptr, picture.row(0).data(), 0, nullptr) != 0;
    return done ? picture : Bitmap();
}
#endif

}  // namespace marnoth::test
