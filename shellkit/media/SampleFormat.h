#pragma once

#include <cstdint>

namespace marnoth {

/// How one sample stands in a WAV file.
enum class SampleFormat { integer16, integer24, float32 };

constexpr std::uint32_t bytesOf(SampleFormat format) {
    return format == SampleFormat::integer16 ? 2 : format == SampleFormat::integer24 ? 3 : 4;
}

/// Steps from silence to full scale of an integer format.
constexpr std::int32_t stepsOf(SampleFormat format) {
    return format == SampleFormat::integer16 ? 1 << 15 : 1 << 23;
}

}  // namespace marnoth
