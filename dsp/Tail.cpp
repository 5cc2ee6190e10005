#include "dsp/Tail.h"

#include <algorithm>
#include <cmath>

#include "dsp/Crossfade.h"
#include "dsp/MixKernels.h"
#include "dsp/MixRun.h"
#include "dsp/StretchPlan.h"

namespace marnoth {
namespace {

/// What a pass over the whole grain falls to.
constexpr double kFallPerGrain = 0.15;
constexpr double kFadeInSeconds = 0.002;
constexpr double kFadeOutSeconds = 0.1;

struct TailRamp {
    double gain = 0;
    double step = 0;
};

class TailRender {
public:
    TailRender(const SourceWave& source, std::int64_t firstFrame, std::int64_t grainFrames,
               std::int32_t sampleRate, float* dest)
        : source(source),
          first(firstFrame),
          rate(sampleRate),
          dest(dest),
          decay(tailDecayPerFrame(grainFrames)),
          plan(planPasses(grainFrames, 2 * grainFrames, sampleRate)) {}

    void render() const {
        for (std::int64_t pos = 0, stop = 0; pos < plan.target; pos = stop) {
            const Pass pass = passAt(plan, pos);
            stop = std::min(plan.target, pos < pass.fadeStart ? pass.fadeStart : pass.end);
            if (pos < pass.fadeStart || pass.toCome < 1) {
                plainPart(pass, pos, stop);
            } else {
                crossfade(pass, pos, stop);
            }
        }
    }

private:
    /// The level of pass `number`, counted from 0.
    double passGain(std::int64_t number) const {
        const auto step = static_cast<double>(plan.step);
        return std::pow(decay, static_cast<double>(number - 1) * step) * std::pow(decay, step);
    }

    std::int64_t numberOf(const Pass& pass) const { return plan.passes - pass.toCome - 1; }

    std::int64_t framesOf(double seconds) const {
        return static_cast<std::int64_t>(static_cast<double>(static_cast<float>(rate)) * seconds);
    }

    void plainPart(const Pass& pass, std::int64_t pos, std::int64_t stop) const {
        const double gain = passGain(numberOf(pass));
        if (pos == 0) {
            fadeIn(pass, stop, gain);
        } else if (stop == plan.target) {
            fadeOut(pass, pos, stop, gain);
        } else {
            mix(false, pos, pos - pass.offset, stop - pos, {gain});
        }
    }

    /// The tail's first run, with a short rise against clicks.
    void fadeIn(const Pass& pass, std::int64_t stop, double gain) const {
        const std::int64_t rise = std::min(framesOf(kFadeInSeconds), stop);
        if (rise > 0) mix(true, 0, -pass.offset, rise, {0, gain / static_cast<double>(rise)});
        mix(false, rise, rise - pass.offset, stop - rise, {gain});
    }

    /// The tail's last run.
    void fadeOut(const Pass& pass, std::int64_t pos, std::int64_t stop, double gain) const {
        const std::int64_t fall = std::min(framesOf(kFadeOutSeconds), stop - pos);
        const std::int64_t fallStart = stop - fall;
        mix(true, pos, pos - pass.offset, fallStart - pos, {gain});
        if (fall > 0)
            mix(true, fallStart, fallStart - pass.offset, fall, {gain, -gain / static_cast<double>(fall)});
    }

    void crossfade(const Pass& pass, std::int64_t pos, std::int64_t stop) const {
        const std::int64_t from = pos - pass.offset;
        // What the wave leaves to the louder side is taken by both.
        const std::int64_t count = std::min(stop - pos, available() - from);
        const auto length = static_cast<double>(plan.fade);
        const double squared = length * length;
        const double out = passGain(numberOf(pass));
        const double in = passGain(numberOf(pass) + 1);
        const double outStep = -out / squared;
        const double inStep = 2 * in / length - in / squared;
        const double outCurve = -2 * out / squared;
        const double inCurve = -2 * in / squared;
        mixCrossfade(
            {source, first + from, first + from - plan.step, count, placeOf(pos), source.channels},
            {{out, out, 0, 0}, {outStep, outStep, inStep, inStep}, {outCurve, outCurve, inCurve, inCurve}});
    }

    std::int64_t available() const { return source.frames - first; }

    float* placeOf(std::int64_t at) const { return dest + at * source.channels; }

    MixArgs argsFor(std::int64_t at, const TailRamp& ramp) const {
        MixArgs args;
        args.dest = placeOf(at);
        args.gainL = args.gainR = ramp.gain;
        args.stepL = args.stepR = ramp.step;
        args.sampleBytes = sizeof(float);
        return args;
    }

    void mix(bool ramped, std::int64_t at, std::int64_t from, std::int64_t count,
             const TailRamp& ramp) const {
        const auto channels = static_cast<std::uint32_t>(source.channels);
        mixRun(GetMixKernel(32, channels, channels, 0, ramped ? 1 : 0, 0), source, first + from,
               std::min(count, available() - from), source.channels, argsFor(at, ramp));
    }

    const SourceWave& source;
    std::int64_t first;
    std::int32_t rate;
    float* dest;
    double decay;
    PassPlan plan;
};

}  // namespace

double tailDecayPerFrame(std::int64_t grainFrames) {
    return grainFrames < 1 ? 0 : std::pow(kFallPerGrain, 1.0 / static_cast<double>(grainFrames));
}

void renderTail(const SourceWave& source, std::int64_t firstFrame, std::int64_t grainFrames,
                std::int32_t sampleRate, float* dest) {
    const StretchSpan whole{0, 1, 2 * std::clamp<std::int64_t>(grainFrames, 0, kMostFrames)};
    const auto request = checkRequest({source, firstFrame, grainFrames, sampleRate}, whole);
    if (request) TailRender(source, firstFrame, grainFrames, request->sampleRate, dest).render();
}

}  // namespace marnoth
