#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <span>

namespace marnoth {

/// The level of the mix and its meter. A new level is reached in a glide of some milliseconds, however long
/// the blocks are.
class MasterLevel {
public:
    /// A factor from 0 on. Any thread.
    void set(float gain) { wanted_ = gain; }
    float get() const { return wanted_; }
    /// Frames per second. Not below a block.
    void setRate(std::uint32_t rate);
    /// The thread that renders. Both are as long.
    void apply(std::span<float> left, std::span<float> right);

    /// The highest magnitude of a side, 0 left or 1 right, since the last call. One thread.
    float takePeak(int side) { return peaks_[static_cast<std::size_t>(side)].exchange(0.0f); }

private:
    float next();
    void measure(std::size_t side, std::span<const float> samples);

    std::atomic<float> wanted_ = 1.0f;
    float present_ = 1.0f;
    float target_ = 1.0f;  ///< of the glide that is under way
    float step_ = 0.0f;    ///< of a frame
    int left_ = 0;         ///< frames of the glide
    int glide_ = 480;      ///< frames
    std::array<std::atomic<float>, 2> peaks_{};
};

}  // namespace marnoth
