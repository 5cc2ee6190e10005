#include "dsp/Crossfade.h"

#include <algorithm>

#include "dsp/MixRun.h"
#include "dsp/WideRegisters.h"

namespace marnoth {
namespace {

void mixInTurn(const SourceWave& wave, std::int64_t from, std::int64_t to, std::int64_t count,
               std::int32_t destChannels, const MixArgs& out, const MixArgs& in) {
    const MixKernel ramped = GetMixKernel(32, static_cast<std::uint32_t>(wave.channels),
                                          static_cast<std::uint32_t>(destChannels), 0, 1, 0);
    mixRun(ramped, wave, from, count, destChannels, out);
    mixRun(ramped, wave, to, count, destChannels, in);
}

#if defined(__x86_64__)
/// Whether all reads are of the wave's own frames or its guard frame.
bool isInside(const SourceWave& wave, std::int64_t frame, std::int64_t count) {
    return frame >= 0 && count <= wave.frames + 1 - frame;
}

FadeState stateOf(const MixArgs& out, const MixArgs& in) {
    return {{out.gainL, out.gainR, in.gainL, in.gainR},
            {out.stepL, out.stepR, in.stepL, in.stepR},
            {out.curveL, out.curveR, in.curveL, in.curveR}};
}

/// Adds the next `frames` frames; gives where the gains stand behind them.
FadeState addFrames(CrossfadeGains* known, const FadeState& state, std::int32_t frames, float* dest,
                    const float* out, const float* in, std::int32_t channels) {
    if (const CrossfadeGains::Ramp* ramp = known ? known->find(state, frames) : nullptr) {
        crossfadeBy(*ramp, dest, out, in, channels);
        return ramp->end;
    }
    CrossfadeGains::Ramp unknown;
    CrossfadeGains::Ramp& ramp = known ? known->replaceOldest() : unknown;
    ramp.begin = state;
    ramp.frames = frames;
    crossfadeAndRecord(ramp, dest, out, in, channels);
    return ramp.end;
}

void mixTogether(const SourceWave& wave, std::int64_t from, std::int64_t to, std::int64_t count,
                 const MixArgs& out, const MixArgs& in, CrossfadeGains* known) {
    FadeState state = stateOf(out, in);
    auto* dest = static_cast<float*>(out.dest);
    while (count > 0) {
        const std::int64_t frames = std::min<std::int64_t>(count, CrossfadeGains::kFrames);
        state =
            addFrames(known, state, static_cast<std::int32_t>(frames), dest,
                      wave.samples + from * wave.channels, wave.samples + to * wave.channels, wave.channels);
        dest += frames * 2;
        from += frames;
        to += frames;
        count -= frames;
    }
}

bool canGoTogether(const SourceWave& wave, std::int64_t from, std::int64_t to, std::int64_t count,
                   std::int32_t destChannels) {
    return destChannels == 2 && wave.channels <= 2 && isInside(wave, from, count) &&
           isInside(wave, to, count) && has256();
}

#endif

}  // namespace

void mixCrossfade(const SourceWave& wave, std::int64_t from, std::int64_t to, std::int64_t count,
                  std::int32_t destChannels, const MixArgs& out, const MixArgs& in,
                  [[maybe_unused]] CrossfadeGains* known) {
#if defined(__x86_64__)
    if (canGoTogether(wave, from, to, count, destChannels))
        return mixTogether(wave, from, to, count, out, in, known);
#endif
    mixInTurn(wave, from, to, count, destChannels, out, in);
}

}  // namespace marnoth
