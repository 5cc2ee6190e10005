#include "engine/render/CutFades.h"

#include <algorithm>

namespace marnoth {

void CutFades::setLength(std::int64_t frames) {
    const std::int64_t length = std::min(frames, kMostFrames);
    if (length == length_) return;
    length_ = head_ = 0;
    const std::size_t values = static_cast<std::size_t>(length) * kMostChannels;
    space_.assign(values, 0.0f);
    for (Ring& ring : rings_) {
        ring.left = 0;
        ring.values.assign(values, 0.0f);
    }
    length_ = length;
}

void CutFades::forget() {
    for (Ring& ring : rings_) {
        ring.left = 0;
        std::fill(ring.values.begin(), ring.values.end(), 0.0f);
    }
}

float* CutFades::clearedSpace() {
    std::fill(space_.begin(), space_.end(), 0.0f);
    return space_.data();
}

void CutFades::add(std::uint32_t output, std::int32_t channels, double level) {
    Ring& ring = rings_[output < rings_.size() ? output : 0];
    for (std::int64_t frame = 0; frame < length_; ++frame) {
        const double gain = level * static_cast<double>(length_ - frame) / static_cast<double>(length_);
        const float* from = space_.data() + frame * channels;
        float* to = ring.values.data() + (head_ + frame) % length_ * channels;
        for (std::int32_t c = 0; c < channels; ++c)
            to[c] += static_cast<float>(static_cast<double>(from[c]) * gain);
    }
    ring.left = length_;
}

void CutFades::play(BlockPins& pins, std::int32_t frames, std::int32_t channels) {
    if (length_ == 0) return;
    for (std::size_t output = 0; output < rings_.size(); ++output) {
        Ring& ring = rings_[output];
        const std::int64_t count = std::min<std::int64_t>(frames, ring.left);
        if (count == 0) continue;
        PinBuffer* const pin = pins.choose(static_cast<std::uint32_t>(output));
        float* const dest = pin ? GetBufferData(*pin) : nullptr;
        for (std::int64_t frame = 0; frame < count; ++frame) {
            float* const from = ring.values.data() + (head_ + frame) % length_ * channels;
            for (std::int32_t c = 0; dest && c < channels; ++c) dest[frame * channels + c] += from[c];
            std::fill_n(from, channels, 0.0f);
        }
        ring.left -= count;
    }
    head_ = (head_ + frames) % length_;
}

}  // namespace marnoth
