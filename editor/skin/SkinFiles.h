#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace marnoth {

/// A picture as it was put into the program.
struct SkinFile {
    std::string name;                  ///< the file's, without its ending
    std::span<const std::byte> bytes;  ///< of the file; good for the life of the process
};

/// All pictures of the skin.
std::vector<SkinFile> skinFiles();

}  // namespace marnoth
