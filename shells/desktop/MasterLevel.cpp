#include "shells/desktop/MasterLevel.h"

#include <algorithm>
#include <cmath>

namespace marnoth {

void MasterLevel::apply(std::span<float> left, std::span<float> right) {
    const float wanted = wanted_;
    // At full level nothing is computed: the mix stays as it is to the last bit.
    if (wanted != 1.0f || present_ != 1.0f) {
        const float step = (wanted - present_) / static_cast<float>(std::max<std::size_t>(left.size(), 1));
        for (std::size_t frame = 0; frame < left.size(); ++frame) {
            const float gain = present_ + step * static_cast<float>(frame + 1);
            left[frame] *= gain;
            right[frame] *= gain;
        }
        present_ = wanted;
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
