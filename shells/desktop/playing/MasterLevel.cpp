#include "shells/desktop/playing/MasterLevel.h"

#include <algorithm>
#include <cmath>

namespace marnoth {

void MasterLevel::setRate(std::uint32_t rate) {
    constexpr std::uint32_t kGlidesOfASecond = 100;
    glide_ = static_cast<int>(std::max(rate / kGlidesOfASecond, 1u));
}

float MasterLevel::next() {
    // The end is met exactly.
    present_ = --left_ > 0 ? present_ + step_ : target_;
    return present_;
}

void MasterLevel::apply(std::span<float> left, std::span<float> right) {
    if (const float wanted = wanted_; wanted != target_) {
        target_ = wanted;
        left_ = glide_;
        step_ = (target_ - present_) / static_cast<float>(glide_);
    }
    // At full level nothing is computed: the mix stays as it is to the last bit.
    if (left_ > 0 || present_ != 1.0f) {
        for (std::size_t frame = 0; frame < left.size(); ++frame) {
            const float gain = left_ > 0 ? next() : present_;
            left[frame] *= gain;
            right[frame] *= gain;
        }
    }
    measure(0, left);
    measure(1, right);
}

void MasterLevel::measure(std::size_t side, std::span<const float> samples) {
    float peak = 0.0f;
    for (const float sample : samples) peak = std::max(peak, std::abs(sample));
    // Whoever takes the peak meanwhile may get it twice: a meter that is a block too long.
    if (peak > peaks_[side].load()) peaks_[side] = peak;
}

}  // namespace marnoth
