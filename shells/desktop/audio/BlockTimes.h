#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>

namespace marnoth {

/// How long blocks took to render, each as a part of the time that it lasts: beyond 1 it came too late. One
/// thread notes; any may ask.
class BlockTimes {
public:
    /// The thread that renders.
    void note(float portion) {
        ++blocks_;
        if (portion > kQuarter) ++long_;
        if (portion > 1.0f) ++late_;
        sum_ = sum_ + static_cast<double>(portion);
        worst_ = std::max<float>(worst_, portion);
        recent_ = std::max<float>(recent_, portion);
    }

    /// The longest since the last call.
    float takeRecent() { return recent_.exchange(0.0f); }

    std::uint64_t blocks() const { return blocks_; }
    /// Beyond a quarter of their time: others have to render in it too.
    std::uint64_t beyondQuarter() const { return long_; }
    std::uint64_t late() const { return late_; }
    float worst() const { return worst_; }
    double mean() const { return blocks_ > 0 ? sum_ / static_cast<double>(blocks_) : 0.0; }

private:
    static constexpr float kQuarter = 0.25f;

    std::atomic<std::uint64_t> blocks_ = 0;
    std::atomic<std::uint64_t> long_ = 0;
    std::atomic<std::uint64_t> late_ = 0;
    std::atomic<double> sum_ = 0.0;
    std::atomic<float> worst_ = 0.0f;
    std::atomic<float> recent_ = 0.0f;
};

}  // namespace marnoth
