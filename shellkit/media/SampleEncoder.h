#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "shellkit/media/Dither.h"
#include "shellkit/media/SampleFormat.h"

namespace marnoth {

/// What becomes of samples on their way into a file.
struct Encoding {
    SampleFormat format = SampleFormat::float32;
    bool dither = true;                ///< of integers
    double gain = 1;                   ///< a factor, applied first
    std::uint32_t ditherSequence = 0;  ///< another one for each of files that may be mixed
};

/// Samples above full scale that integers couldn't hold.
struct Clipping {
    std::int64_t samples = 0;
    std::int64_t firstFrame = 0;
    float peak = 0;  ///< the highest of them, without its sign; 1 is full scale
};

/// Floats to the bytes of a file's format: times the gain, dithered, rounded to the nearest step, and clipped
/// at full scale where the format has one. A sample that is no number becomes silence in integers. One
/// thread.
class SampleEncoder {
public:
    SampleEncoder(const Encoding& encoding, std::uint32_t channels)
        : encoding_(encoding), channels_(channels), dither_(encoding.ditherSequence) {}

    void setGain(double gain) { encoding_.gain = gain; }
    /// Takes whole frames. The bytes are good until the next call, and as long as `interleaved` is.
    std::span<const std::byte> encode(std::span<const float> interleaved);

    /// Of all so far; nothing for floats.
    const Clipping& clipping() const { return clipping_; }

private:
    void encodeFloats(std::span<const float> samples);
    void encodeIntegers(std::span<const float> samples);
    std::int32_t stepsFrom(double sample);
    void noteClipping(double sample);

    Encoding encoding_;
    std::uint32_t channels_;
    Dither dither_;
    Clipping clipping_;
    std::int64_t done_ = 0;  ///< samples so far
    std::vector<std::byte> bytes_;
};

/// The highest level, without its sign, that an encoding's format holds unclipped, dither included.
double highestLevel(const Encoding& encoding);

}  // namespace marnoth
