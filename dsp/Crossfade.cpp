#include "dsp/Crossfade.h"

#include <limits>

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

MixArgs runOf(const SourceWave& wave, std::int64_t frame, std::int64_t count, const MixArgs& ramp) {
    MixArgs args = ramp;
    args.src = wave.samples + frame * wave.channels;
    args.count = static_cast<std::int32_t>(count);
    return args;
}

bool canGoTogether(const SourceWave& wave, std::int64_t from, std::int64_t to, std::int64_t count,
                   std::int32_t destChannels) {
    return destChannels == 2 && wave.channels <= 2 && count <= std::numeric_limits<std::int32_t>::max() &&
           isInside(wave, from, count) && isInside(wave, to, count) && has256();
}

#endif

}  // namespace

void mixCrossfade(const SourceWave& wave, std::int64_t from, std::int64_t to, std::int64_t count,
                  std::int32_t destChannels, const MixArgs& out, const MixArgs& in) {
#if defined(__x86_64__)
    if (canGoTogether(wave, from, to, count, destChannels))
        return crossfadeTogether(runOf(wave, from, count, out), runOf(wave, to, count, in), wave.channels);
#endif
    mixInTurn(wave, from, to, count, destChannels, out, in);
}

}  // namespace marnoth
