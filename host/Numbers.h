#pragma once

#include <cstdint>
#include <limits>

namespace marnoth {

/// Arithmetic on values that come from a host and may be anything: none of it is ever undefined.

/// Truncates toward zero. Values beyond the range of the result take its nearest end; no number is 0.
inline std::int64_t truncatedToInt64(double value) {
    if (value != value) return 0;
    if (value >= 0x1p63) return std::numeric_limits<std::int64_t>::max();
    if (value < -0x1p63) return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(value);
}

inline std::int32_t clampedToInt32(std::int64_t value) {
    if (value > std::numeric_limits<std::int32_t>::max()) return std::numeric_limits<std::int32_t>::max();
    if (value < std::numeric_limits<std::int32_t>::min()) return std::numeric_limits<std::int32_t>::min();
    return static_cast<std::int32_t>(value);
}

/// Sum, difference and product modulo 2^64.
inline std::int64_t wrappingSum(std::int64_t a, std::int64_t b) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}
inline std::int64_t wrappingDifference(std::int64_t a, std::int64_t b) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}
inline std::int64_t wrappingProduct(std::int64_t a, std::int64_t b) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b));
}

}  // namespace marnoth
