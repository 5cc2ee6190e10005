#pragma once

#include <array>
#include <atomic>
#include <span>

namespace marnoth {

/// The level of the mix and its meter. A new level glides over a block.
class MasterLevel {
public:
    /// A factor from 0 on. Any thread.
    void set(float gain) { wanted_ = gain; }
    float get() const { return wanted_; }
    /// The thread that renders. Both are as long.
    void apply(std::span<float> left, std::span<float> right);

    /// The highest magnitude of a side, 0 left or 1 right, since the last call. One thread.
    float takePeak(int side) { return peaks_[static_cast<std::size_t>(side)].exchange(0.0f); }

private:
    void measure(std::size_t side, std::span<const float> samples);

    std::atomic<float> wanted_ = 1.0f;
    float present_ = 1.0f;
    std::array<std::atomic<float>, 2> peaks_{};
};

}  // namespace marnoth
