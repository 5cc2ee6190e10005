#pragma once

#include <filesystem>

namespace marnoth {

/// The file that a name stands for: behind all symbolic links, be it there or not. `name` itself when it is
/// no link, or one that goes round in a circle.
std::filesystem::path behindLinks(const std::filesystem::path& name);

/// Whether two names mean the same file: by the file's identity where it is there, so that hard links and
/// other spellings are one, else by the place.
bool isSamePlace(const std::filesystem::path& a, const std::filesystem::path& b);

}  // namespace marnoth
