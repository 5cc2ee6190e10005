#pragma once

#include <cstdint>
#include <vector>

namespace marnoth {

/// A program's picture in one size, as task bars and lists of windows show it.
struct IconPicture {
    std::uint32_t size = 0;  ///< width and height, pixels
    /// Rows from the top without gaps: alpha in the highest byte, below it red, green and blue as they are.
    std::vector<std::uint32_t> pixels;
};

}  // namespace marnoth
