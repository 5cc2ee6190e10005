#pragma once

#include <cstdint>
#include <limits>

namespace marnoth {

/// Sums, differences and products of times, in 16.16 ticks or samples. Positions, tempos and lengths come
/// from hosts and files, and may be anything: what doesn't fit stays at the end of the range, which is far
/// beyond any music.

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

}  // namespace marnoth
