#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <optional>

namespace marnoth {

/// The tempo of a finger that taps beats: the mean of the last intervals. A pause begins anew.
class TapTempo {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// Beats per minute from the second tap on.
    std::optional<double> tap(Time now) {
        if (count_ > 0 && now - taps_[(count_ - 1) % kTaps] > kPause) count_ = 0;
        taps_[count_++ % kTaps] = now;
        if (count_ < 2) return {};
        const std::size_t intervals = count_ < kTaps ? count_ - 1 : kTaps - 1;
        const Time first = taps_[(count_ - 1 - intervals) % kTaps];
        const std::chrono::duration<double> whole = now - first;
        if (whole.count() <= 0.0) return {};
        return 60.0 * static_cast<double>(intervals) / whole.count();
    }

private:
    static constexpr std::size_t kTaps = 5;
    static constexpr std::chrono::seconds kPause{2};

    std::array<Time, kTaps> taps_{};
    std::size_t count_ = 0;
};

}  // namespace marnoth
