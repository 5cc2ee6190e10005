#pragma once

#include <cstddef>
#include <span>

#include "seam/LoadFault.h"

namespace marnoth {

/// As many first bytes of a file as `fileType` looks at.
inline constexpr std::size_t kFileTypeBytes = 12;

/// What audio file it is that begins with these bytes, fewer in a shorter file. `unknown` for WAV files too.
FileType fileType(std::span<const std::byte> firstBytes);

}  // namespace marnoth
