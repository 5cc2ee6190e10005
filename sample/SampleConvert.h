#pragma once

#include <cstddef>
#include <cstdint>

namespace marnoth {

/// Integer samples to `float`: each value times `scale` in double precision, rounded once. They run from the
/// last value to the first, so `dest` may begin where `source` begins: values grow in place.
void convert16(float* dest, const std::byte* source, std::int64_t count, double scale);

/// The same for packed signed 24-bit little-endian values.
void convert24(float* dest, const std::byte* source, std::int64_t count, double scale);

inline constexpr double kScale16 = 1.0 / 32768;
inline constexpr double kScale24 = 1.0 / 8388608;

}  // namespace marnoth
