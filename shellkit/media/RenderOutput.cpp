#include "shellkit/media/RenderOutput.h"

#include <algorithm>
#include <cmath>

#include "shellkit/files/Failure.h"

namespace marnoth {

void RenderOutput::take(std::span<const float> samples) noexcept {
    if (failure_) return;
    for (const float sample : samples) peak_ = std::max(peak_, std::abs(sample));
    try {
        writer_.write(samples);
    } catch (const std::exception& error) {
        failure_ = error.what();
    }
}

void RenderOutput::check() const {
    if (failure_) throw FileFailure(*failure_);
}

}  // namespace marnoth
