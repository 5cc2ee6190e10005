#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

#include "dsp/SourceWave.h"
#include "dsp/Stretch.h"

namespace marnoth::test {

/// A wave with its guard frame, in the middle of a field of NaN: a read outside shows in whatever it is mixed
/// into. The field ends right behind the block, where the address sanitizer takes over.
class TestWave {
public:
    using Value = std::function<float(std::int64_t frame, int channel)>;

    TestWave(std::int64_t frames, int channels, const Value& value) : frames(frames), channels(channels) {
        const std::int64_t field = kField * channels;
        block.assign(static_cast<std::size_t>(field + (frames + 1) * channels + field),
                     std::numeric_limits<float>::quiet_NaN());
        for (std::int64_t i = 0; i <= frames; ++i) {
            const std::int64_t from = i < frames || frames == 0 ? i : frames - 1;
            for (int c = 0; c < channels; ++c) block[field + i * channels + c] = value(from, c);
        }
    }

    SourceWave view() const { return {block.data() + kField * channels, frames, channels}; }

    /// The value that a read of any frame must give.
    float at(std::int64_t frame, int channel) const {
        const std::int64_t inside = frame < 0 ? 0 : frame > frames ? frames : frame;
        return view().samples[inside * channels + channel];
    }

    std::int64_t frames;
    int channels;

private:
    static constexpr std::int64_t kField = 64;
    std::vector<float> block;
};

/// Values without pattern, from -1 to 1.
inline float noise(std::int64_t frame, int channel) {
    auto bits = static_cast<std::uint32_t>(frame * 2 + channel + 1) * 2654435761u;
    bits ^= bits >> 15;
    bits *= 2246822519u;
    bits ^= bits >> 13;
    return static_cast<float>(bits) / 2147483648.0f - 1.0f;
}

/// Every sample says its frame's number; the right channel's is negative.
inline float frameNumber(std::int64_t frame, int channel) {
    return channel == 0 ? static_cast<float>(frame) : -static_cast<float>(frame);
}

/// A render of `renderStretched` or `renderShifted` with all but span and destination filled in.
using RenderCall = std::function<void(const StretchSpan&, const StretchDest&)>;

/// Target frames `pos` to `end` in blocks of `blockFrames`, as interleaved frames.
inline std::vector<float> renderInBlocks(const RenderCall& render, std::int64_t pos, std::int64_t end,
                                         std::int64_t target, int channels, std::int32_t blockFrames) {
    std::vector<float> out(static_cast<std::size_t>((end - pos) * channels), 0.0f);
    for (std::int64_t at = pos; at < end; at += blockFrames) {
        const auto frames = static_cast<std::int32_t>(std::min<std::int64_t>(blockFrames, end - at));
        render({at, frames, target}, {out.data() + (at - pos) * channels, channels});
    }
    return out;
}

inline std::vector<float> renderWhole(const RenderCall& render, std::int64_t target, int channels) {
    return renderInBlocks(render, 0, target, target, channels, static_cast<std::int32_t>(target));
}

}  // namespace marnoth::test
