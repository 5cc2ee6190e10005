#include "shellkit/media/SampleEncoder.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace marnoth {

std::span<const std::byte> SampleEncoder::encode(std::span<const float> interleaved) {
    const bool isFloat = encoding_.format == SampleFormat::float32;
    if (isFloat && encoding_.gain == 1) return std::as_bytes(interleaved);
    bytes_.resize(interleaved.size() * bytesOf(encoding_.format));
    if (isFloat)
        encodeFloats(interleaved);
    else
        encodeIntegers(interleaved);
    return bytes_;
}

void SampleEncoder::encodeFloats(std::span<const float> samples) {
    std::byte* at = bytes_.data();
    for (const float sample : samples) {
        const auto value = static_cast<float>(sample * encoding_.gain);
        std::memcpy(at, &value, sizeof value);
        at += sizeof value;
    }
}

void SampleEncoder::encodeIntegers(std::span<const float> samples) {
    const std::uint32_t width = bytesOf(encoding_.format);
    std::byte* at = bytes_.data();
    for (const float sample : samples) {
        const auto value = static_cast<std::uint32_t>(stepsFrom(sample * encoding_.gain));
        for (std::uint32_t i = 0; i < width; ++i) *at++ = static_cast<std::byte>(value >> 8 * i);
        ++done_;
    }
}

std::int32_t SampleEncoder::stepsFrom(double sample) {
    if (std::isnan(sample)) return 0;
    if (std::abs(sample) > 1) noteClipping(sample);
    const double full = stepsOf(encoding_.format);
    const double noise = encoding_.dither ? dither_.next() : 0;
    const double nearest = std::floor(sample * full + noise + 0.5);
    return static_cast<std::int32_t>(std::clamp(nearest, -full, full - 1));
}

void SampleEncoder::noteClipping(double sample) {
    if (clipping_.samples++ == 0) clipping_.firstFrame = done_ / channels_;
    clipping_.peak = std::max(clipping_.peak, static_cast<float>(std::abs(sample)));
}

double highestLevel(const Encoding& encoding) {
    if (encoding.format == SampleFormat::float32) return 1;
    const double full = stepsOf(encoding.format);
    return (full - (encoding.dither ? 2 : 1)) / full;
}

}  // namespace marnoth
