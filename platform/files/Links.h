#pragma once

#include <filesystem>

namespace marnoth {

/// The file that a name stands for: behind all symbolic links, be it there or not. `name` itself when it is
/// no link, or one that goes round in a circle.
std::filesystem::path behindLinks(const std::filesystem::path& name);

}  // namespace marnoth
