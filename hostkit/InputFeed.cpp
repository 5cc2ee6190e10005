#include "hostkit/InputFeed.h"

#include <algorithm>
#include <utility>

namespace marnoth {

void InputFeed::setSilence() {
    setFrames({});
    silence_ = true;
}

void InputFeed::setFrames(std::vector<float> interleaved) {
    samples_ = std::move(interleaved);
    taken_ = 0;
    silence_ = false;
}

std::span<const float> InputFeed::take(std::size_t count) {
    const std::size_t given = std::min(count, samples_.size() - taken_);
    return std::span<const float>(samples_).subspan(std::exchange(taken_, taken_ + given), given);
}

}  // namespace marnoth
