#include "dsp/Crossfade.h"

#include <algorithm>
#include <cstddef>

#include "dsp/MixKernels.h"
#include "dsp/MixRun.h"
#include "dsp/WideRegisters.h"

namespace marnoth {
namespace {

/// The gains of one side, which are two of four.
MixArgs argsOf(const CrossfadeRun& run, const FadeState& gains, std::size_t left) {
    MixArgs args;
    args.dest = run.dest;
    args.gainL = gains.gain[left];
    args.gainR = gains.gain[left + 1];
    args.stepL = gains.step[left];
    args.stepR = gains.step[left + 1];
    args.curveL = gains.curve[left];
    args.curveR = gains.curve[left + 1];
    args.sampleBytes = sizeof(float);
    return args;
}

void mixInTurn(const CrossfadeRun& run, const FadeState& gains) {
    const MixKernel ramped = GetMixKernel(32, static_cast<std::uint32_t>(run.wave.channels),
                                          static_cast<std::uint32_t>(run.destChannels), 0, 1, 0);
    mixRun(ramped, run.wave, run.from, run.count, run.destChannels, argsOf(run, gains, 0));
    mixRun(ramped, run.wave, run.to, run.count, run.destChannels, argsOf(run, gains, 2));
}

#if defined(__x86_64__)
/// Whether all reads are of the wave's own frames or its guard frame.
bool isInside(const SourceWave& wave, std::int64_t frame, std::int64_t count) {
    return frame >= 0 && count <= wave.frames + 1 - frame;
}

bool canGoTogether(const CrossfadeRun& run) {
    return run.destChannels == 2 && run.wave.channels <= 2 && isInside(run.wave, run.from, run.count) &&
           isInside(run.wave, run.to, run.count) && has256();
}

/// Adds the next `frames` frames; gives where the gains stand behind them.
FadeState addFrames(CrossfadeGains* known, const FadeState& begin, std::int32_t frames, float* dest,
                    const float* out, const float* in, std::int32_t channels) {
    if (const CrossfadeGains::Ramp* ramp = known ? known->find(begin, frames) : nullptr) {
        crossfadeBy(*ramp, dest, out, in, channels);
        return ramp->end;
    }
    CrossfadeGains::Ramp unknown;
    CrossfadeGains::Ramp& ramp = known ? known->replaceOldest() : unknown;
    ramp.begin = begin;
    ramp.frames = frames;
    crossfadeAndRecord(ramp, dest, out, in, channels);
    return ramp.end;
}

void mixTogether(const CrossfadeRun& run, FadeState gains, CrossfadeGains* known) {
    const std::int64_t channels = run.wave.channels;
    const float* out = run.wave.samples + run.from * channels;
    const float* in = run.wave.samples + run.to * channels;
    float* dest = run.dest;
    for (std::int64_t left = run.count, frames = 0; left > 0; left -= frames) {
        frames = std::min<std::int64_t>(left, CrossfadeGains::kFrames);
        gains = addFrames(known, gains, static_cast<std::int32_t>(frames), dest, out, in, run.wave.channels);
        dest += frames * 2;
        out += frames * channels;
        in += frames * channels;
    }
}

#endif

}  // namespace

void mixCrossfade(const CrossfadeRun& run, const FadeState& gains, [[maybe_unused]] CrossfadeGains* known) {
#if defined(__x86_64__)
    if (canGoTogether(run)) return mixTogether(run, gains, known);
#endif
    mixInTurn(run, gains);
}

}  // namespace marnoth
