#include "sample/SampleConvert.h"

#include <cmath>
#include <cstring>
#include <functional>

#include "dsp/WideRegisters.h"

namespace marnoth {
namespace {

template <int bytes>
std::int32_t valueAt(const std::byte* source);

template <>
[[gnu::always_inline]] inline std::int32_t valueAt<2>(const std::byte* source) {
    std::int16_t value;
    std::memcpy(&value, source, sizeof value);
    return value;
}

template <>
[[gnu::always_inline]] inline std::int32_t valueAt<3>(const std::byte* source) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(source);
    return static_cast<std::int8_t>(bytes[2]) * 65536 + (bytes[0] | bytes[1] << 8);
}

/// A power of two only moves the exponent of a value that `float` holds, as it does those of 24 bits: the
/// product is the same in `float`.
bool onlyMovesTheExponent(double scale) {
    int exponent = 0;
    return std::frexp(scale, &exponent) == 0.5 && exponent > -100 && exponent < 100;
}

bool areApart(const float* dest, const std::byte* source, std::int64_t count, int bytes) {
    const auto* begin = reinterpret_cast<const std::byte*>(dest);
    const auto* end = reinterpret_cast<const std::byte*>(dest + count);
    const std::less_equal<const std::byte*> isBefore;
    return isBefore(end, source) || isBefore(source + count * bytes, begin);
}

template <int bytes>
[[gnu::always_inline]] inline void convertApart(float* const& to, const std::byte* const& from,
                                                const std::int64_t& count, const float& scale) {
    float* __restrict dest = to;
    const std::byte* __restrict source = from;
    const std::int64_t values = count;
    const float factor = scale;
    for (std::int64_t i = 0; i < values; ++i)
        dest[i] = static_cast<float>(valueAt<bytes>(source + i * bytes)) * factor;
}

template <int bytes>
void convert(float* dest, const std::byte* source, std::int64_t count, double scale) {
    if (onlyMovesTheExponent(scale) && areApart(dest, source, count, bytes))
        return withWidest<convertApart<bytes>>(dest, source, count, static_cast<float>(scale));
    for (std::int64_t i = count - 1; i >= 0; --i)
        dest[i] = static_cast<float>(valueAt<bytes>(source + i * bytes) * scale);
}

}  // namespace

void convert16(float* dest, const std::byte* source, std::int64_t count, double scale) {
    convert<2>(dest, source, count, scale);
}

void convert24(float* dest, const std::byte* source, std::int64_t count, double scale) {
    convert<3>(dest, source, count, scale);
}

}  // namespace marnoth
