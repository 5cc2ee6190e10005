#include "dsp/CrossfadeGains.h"

#include <array>
#include <bit>
#include <cstdint>

#include "dsp/WideRegisters.h"

namespace marnoth {
namespace {

/// Both zeros count as different: a product has the sign of its gain.
bool sameBits(const FadeState& a, const FadeState& b) {
    using Bits = std::array<std::uint64_t, sizeof(FadeState) / sizeof(std::uint64_t)>;
    return std::bit_cast<Bits>(a) == std::bit_cast<Bits>(b);
}

template <int channels>
[[gnu::always_inline]] inline void addFrames(const CrossfadeGains::Ramp& ramp, float* const& destination,
                                             const float* const& fallen, const float* const& risen) {
    float* __restrict dest = destination;
    const float* __restrict out = fallen;
    const float* __restrict in = risen;
    constexpr int left = 2 / channels;  // samples of the destination for each of the source
    const std::int32_t samples = ramp.frames * 2;
#pragma GCC ivdep
    for (std::int32_t i = 0; i < samples; ++i) {
        const auto at = static_cast<std::size_t>(i);
        const auto falling = static_cast<float>(static_cast<double>(out[i / left]) * ramp.out[at]);
        const auto rising = static_cast<float>(static_cast<double>(in[i / left]) * ramp.in[at]);
        dest[i] = (dest[i] + falling) + rising;
    }
}

}  // namespace

const CrossfadeGains::Ramp* CrossfadeGains::find(const FadeState& begin, std::int32_t frames) const {
    // The next pad in step wants what the last one had.
    for (std::size_t back = 1; back <= ramps_.size(); ++back) {
        const Ramp& ramp = ramps_[(oldest_ + ramps_.size() - back) % ramps_.size()];
        if (ramp.frames == frames && sameBits(ramp.begin, begin)) return &ramp;
    }
    return nullptr;
}

CrossfadeGains::Ramp& CrossfadeGains::replaceOldest() {
    Ramp& ramp = ramps_[oldest_];
    oldest_ = (oldest_ + 1) % ramps_.size();
    ramp.frames = 0;
    return ramp;
}

void crossfadeBy(const CrossfadeGains::Ramp& ramp, float* dest, const float* out, const float* in,
                 std::int32_t channels) {
    if (channels == 2) {
        withWidest<addFrames<2>>(ramp, dest, out, in);
    } else {
        withWidest<addFrames<1>>(ramp, dest, out, in);
    }
}

}  // namespace marnoth
