#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace marnoth {

/// Further out than anything that can be scrolled to, and so far inside an int that sums and differences of a
/// few such pixels stay in it.
inline constexpr int kFarPixel = 1 << 28;

constexpr int heldToFarPixel(std::int64_t pixel) {
    return static_cast<int>(std::clamp<std::int64_t>(pixel, -kFarPixel, kFarPixel));
}

/// The cast from fractions to pixels: towards zero. Held to what pixels can be; what is no number is 0.
inline int truncateToPixel(double value) {
    if (std::isnan(value)) return 0;
    return static_cast<int>(std::clamp<double>(value, -kFarPixel, kFarPixel));
}

}  // namespace marnoth
