#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "seam/Limits.h"
#include "seam/Pzi.h"

namespace marnoth {

inline constexpr std::uint32_t kNoPin = 0xFFFFFFFF;

/// The ids of the instrument's output pins.
struct PinIds {
    std::uint32_t mix = kNoPin;
    std::array<std::uint32_t, kChannelPins> channels{};  ///< 0 not made yet
};

/// The output pins of one block: those of the instrument's pins that are connected.
///
/// Streaming thread; allocates nothing. To open a pin is to take its memory: from then on it isn't silent.
class BlockPins {
public:
    /// `format` is that of the input, in which the instrument renders.
    BlockPins(std::span<PinBuffer> pins, const PinIds& ids, const WAVEFORMATEX& format);

    void clearMix(std::int32_t frames);
    /// Hands the input on to every pin but the mix; `input` null is silence.
    void passInput(const float* input, std::int32_t frames);
    /// Where a pad with this `output` (0 the mix, 1 to 16 a channel) is heard: its channel's pin, or the mix
    /// when that isn't connected. Null without either.
    PinBuffer* choose(std::uint32_t output);
    /// Adds to the mix whatever the other pins hold.
    void sumIntoMix(std::int32_t frames);

private:
    std::size_t bytesOf(std::int32_t frames) const;

    std::span<PinBuffer> pins_;
    const PinIds& ids_;
    const WAVEFORMATEX& format_;
    PinBuffer* mix_;  ///< null when the mix isn't among the pins
};

}  // namespace marnoth
