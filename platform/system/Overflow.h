#pragma once

#include <cstdint>
#include <limits>

namespace marnoth {

/// Arithmetic on numbers that come from hosts and files and may be anything: none of it is ever undefined.

// What doesn't fit stays at the end of the range, which is far beyond any music.

inline std::int64_t plus(std::int64_t a, std::int64_t b) {
    std::int64_t sum;
    if (!__builtin_add_overflow(a, b, &sum)) return sum;
    return a < 0 ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
}

inline std::int64_t minus(std::int64_t a, std::int64_t b) {
    std::int64_t difference;
    if (!__builtin_sub_overflow(a, b, &difference)) return difference;
    return a < 0 ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
}

inline std::int64_t times(std::int64_t a, std::int64_t b) {
    std::int64_t product;
    if (!__builtin_mul_overflow(a, b, &product)) return product;
    return (a < 0) != (b < 0) ? std::numeric_limits<std::int64_t>::min()
                              : std::numeric_limits<std::int64_t>::max();
}

// What doesn't fit goes round, modulo 2^64.

inline std::int64_t wrappingSum(std::int64_t a, std::int64_t b) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}

inline std::int64_t wrappingDifference(std::int64_t a, std::int64_t b) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}

inline std::int64_t wrappingProduct(std::int64_t a, std::int64_t b) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b));
}

// Conversions. What is beyond the range of the result takes its nearest end, and what isn't a number is 0.

/// Truncates toward zero.
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

}  // namespace marnoth
