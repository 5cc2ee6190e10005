#pragma once

#include <cstddef>
#include <filesystem>
#include <vector>

#include "platform/drawing/Bitmap.h"
#include "shellkit/media/OutputFile.h"

namespace marnoth {

/// Writes a picture, which has pixels, as a PNG file: 8 bits each of red, green and blue, and nothing that
/// differs from run to run. Throws `FileFailure`.
void writePng(OutputFile& output, const Bitmap& picture);
void writePng(const std::filesystem::path& path, const Bitmap& picture);

/// The bytes of such a file, made by the system's own encoder. Nothing when that fails.
std::vector<std::byte> encodePng(const Bitmap& picture);

}  // namespace marnoth
