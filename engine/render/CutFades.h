#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "engine/render/BlockPins.h"
#include "seam/Limits.h"

namespace marnoth {

/// What was cut while it sounded, on its way to silence: the sound that would have come, under a fade-out
/// that begins with the cut. It is rendered when it is cut, with the state, place and tempo that it has then,
/// so that nothing of it has to be kept.
///
/// Under the engine's lock; allocates nothing but in `setLength`.
class CutFades {
public:
    /// More than 20 ms at any rate that is played.
    static constexpr std::int64_t kMostFrames = 48000;

    /// Frames of a fade, at most `kMostFrames`, or 0 while nothing is to fade. A new length forgets all
    /// sound.
    void setLength(std::int64_t frames);
    /// What is on its way to silence is there.
    void forget();
    std::int64_t length() const { return length_; }

    /// Zeros for `length` frames, into which what is cut is rendered.
    float* clearedSpace();
    /// Lets what was rendered there fade out on an output, 0 the mix, from the next frame that is played on,
    /// from `level` times its own.
    void add(std::uint32_t output, std::int32_t channels, double level);
    /// Adds the next `frames` frames to the pins.
    void play(BlockPins& pins, std::int32_t frames, std::int32_t channels);

private:
    static constexpr std::size_t kMostChannels = 2;

    struct Ring {
        std::vector<float> values;
        std::int64_t left = 0;  ///< frames that sound yet
    };

    std::int64_t length_ = 0;
    std::int64_t head_ = 0;  ///< the ring's frame that is played next
    std::vector<float> space_;
    std::array<Ring, kChannelPins + 1> rings_;
};

}  // namespace marnoth
