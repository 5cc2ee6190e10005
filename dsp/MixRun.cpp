#include "dsp/MixRun.h"

#include <algorithm>
#include <limits>

namespace marnoth {
namespace {

const float* frameOf(const SourceWave& wave, std::int64_t frame) {
    return wave.samples + frame * wave.channels;
}

/// Kernels hand the gains on but leave the steps as they were, so a ramp in pieces has to carry them.
void advanceSteps(MixArgs& args, std::int64_t frames) {
    if (args.curveL == 0 && args.curveR == 0) return;
    for (std::int64_t i = 0; i < frames; ++i) {
        args.stepL += args.curveL;
        args.stepR += args.curveR;
    }
}

}  // namespace

void mixRun(MixKernel kernel, const SourceWave& wave, std::int64_t frame, std::int64_t count,
            std::int32_t destChannels, MixArgs args) {
    count = std::min<std::int64_t>(count, std::numeric_limits<std::int32_t>::max());
    while (count > 0) {
        const bool inside = frame >= 0 && frame <= wave.frames;
        const std::int64_t piece = inside ? std::min(count, wave.frames + 1 - frame) : 1;
        args.src = frameOf(wave, std::clamp<std::int64_t>(frame, 0, wave.frames));
        args.count = static_cast<std::int32_t>(piece);
        kernel(&args);
        if (piece == count) return;
        advanceSteps(args, piece);
        args.dest = static_cast<float*>(args.dest) + piece * destChannels;
        frame += piece;
        count -= piece;
    }
}

}  // namespace marnoth
