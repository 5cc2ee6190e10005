#include "hostkit/SeparateOutputs.h"

#include <algorithm>

namespace marnoth {

namespace {

void copyChannel(float* dest, std::span<const float> interleaved, std::size_t channel) {
    for (std::size_t i = channel; i < interleaved.size(); i += 2) *dest++ = interleaved[i];
}

}  // namespace

void SeparateOutputs::begin(OutputPointers pointers, std::int32_t frames) {
    pointers_ = {};
    std::copy_n(pointers.begin(), std::min(pointers.size(), kPointers), pointers_.begin());
    for (float* pointer : pointers_)
        if (pointer) std::fill_n(pointer, frames, 0.0f);
    frame_ = 0;
}

void SeparateOutputs::take(int output, std::span<const float> interleaved, bool silent) {
    if (silent) return;
    for (std::size_t channel = 0; channel < 2; ++channel) {
        float* pointer = pointers_[2 * static_cast<std::size_t>(output) + channel];
        if (pointer) copyChannel(pointer + frame_, interleaved, channel);
    }
}

}  // namespace marnoth
