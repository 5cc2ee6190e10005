#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "seam/Limits.h"

namespace marnoth {

/// Plain pointers for every output and channel: mix left, mix right, channel 1 left, channel 1 right, and so
/// on. Any may be null, and those at the end may be missing.
using OutputPointers = std::span<float* const>;

/// Hands interleaved stereo blocks on into separate channels. One thread at a time; nothing allocates.
class SeparateOutputs {
public:
    static constexpr std::size_t kPointers = std::size_t{2} * kOutputPins;

    /// From now on a block of `frames` frames is written to `pointers`, each of which has room for it. All of
    /// it is zeros at first.
    void begin(OutputPointers pointers, std::int32_t frames);
    /// The frame of the block where the next pieces begin.
    void moveTo(std::int32_t frame) { frame_ = frame; }
    /// A piece of an output, 0 the mix, 1 to 16 the channels. A silent one is left zeros.
    void take(int output, std::span<const float> interleaved, bool silent);

private:
    std::array<float*, kPointers> pointers_{};
    std::int32_t frame_ = 0;
};

}  // namespace marnoth
