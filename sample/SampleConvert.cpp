#include "sample/SampleConvert.h"

#include <cstring>

namespace marnoth {

void convert16(float* dest, const std::byte* source, std::int64_t count, double scale) {
    for (std::int64_t i = count - 1; i >= 0; --i) {
        std::int16_t value;
        std::memcpy(&value, source + i * 2, sizeof value);
        dest[i] = static_cast<float>(value * scale);
    }
}

void convert24(float* dest, const std::byte* source, std::int64_t count, double scale) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(source);
    for (std::int64_t i = count - 1; i >= 0; --i) {
        const std::int32_t low = bytes[i * 3] | bytes[i * 3 + 1] << 8;
        const std::int32_t high = static_cast<std::int8_t>(bytes[i * 3 + 2]) * 65536;
        dest[i] = static_cast<float>((high + low) * scale);
    }
}

}  // namespace marnoth
