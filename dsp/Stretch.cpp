#include "dsp/Stretch.h"

#include <algorithm>

#include "dsp/Crossfade.h"
#include "dsp/MixKernels.h"
#include "dsp/MixRun.h"
#include "dsp/StretchPlan.h"

namespace marnoth {
namespace {

/// Where in its crossfade a run begins.
struct FadePlace {
    double length;  ///< frames of the whole crossfade
    double place;   ///< frames that lie before the run
};

/// Both sides' gains at `fade.place` as start values and forward differences. With x the part of the
/// crossfade that lies behind, it fades out by 1 - x * x and in by 1 - (1 - x) * (1 - x). Their sum rises
/// to 1.5 in the middle, and is meant to.
FadeState gainsOf(StereoGain gain, FadePlace fade) {
    const double x = fade.place / fade.length;
    const double n = 1.0 / (fade.length * fade.length);
    const double out = 1.0 - x * x;
    const double in = 1.0 - (1.0 - x) * (1.0 - x);
    const auto outStep = [&](float g) { return -g * n - g * n * fade.place * 2.0; };
    const auto inStep = [&](float g) { return (g * 2.0f) * (fade.length - fade.place) * n - g * n; };
    const auto curve = [&](float g) { return (g * -2.0f) * n; };
    const auto [l, r] = gain;
    return {{l * out, r * out, l * in, r * in},
            {outStep(l), outStep(r), inStep(l), inStep(r)},
            {curve(l), curve(r), curve(l), curve(r)}};
}

/// Of a crossfade whose gains are worked out from fixed places.
constexpr std::int64_t kFramesBetweenPlaces = 64;

/// The render of one span: turns runs of source frames into kernel calls.
class RunMixer {
public:
    RunMixer(const StretchSource& source, const StretchDest& dest, StereoGain gain, std::int64_t begin,
             Ramps ramps)
        : source(source), dest(dest), gain(gain), begin(begin), ramps(ramps) {}

    /// `count` frames from source frame `from` on, at constant gain, to target frame `at`; the source's end
    /// cuts it.
    void plain(std::int64_t at, std::int64_t from, std::int64_t count) const {
        MixArgs args;
        args.dest = placeOf(at);
        args.sampleBytes = (static_cast<std::uint32_t>(source.sampleBits) + 7) / 8;
        args.gainL = gain.left;
        args.gainR = gain.right;
        const MixKernel kernel = GetMixKernel(32, static_cast<std::uint32_t>(source.wave.channels),
                                              static_cast<std::uint32_t>(dest.channels), 0, 0, 0);
        mixRun(kernel, source.wave, source.first + from, std::min(count, source.length - from),
               destChannels(), args);
    }

    /// `count` frames to target frame `at` that fade out of the source at frame `from` and in at frame `to`.
    void crossfade(std::int64_t at, std::int64_t from, std::int64_t to, std::int64_t count,
                   FadePlace fade) const {
        if (ramps.from == RampsFrom::runs) return add(at, from, to, count, gainsOf(gain, fade));
        for (std::int64_t done = 0, frames = 0; done < count; done += frames) {
            const auto place = static_cast<std::int64_t>(fade.place) + done;
            const std::int64_t behind = place % kFramesBetweenPlaces;
            frames = std::min(count - done, kFramesBetweenPlaces - behind);
            FadeState gains = gainsOf(gain, {fade.length, static_cast<double>(place - behind)});
            for (std::int64_t i = 0; i < behind; ++i) gains.advance();
            add(at + done, from + done, to + done, frames, gains);
        }
    }

private:
    void add(std::int64_t at, std::int64_t from, std::int64_t to, std::int64_t count,
             const FadeState& gains) const {
        mixCrossfade(
            {source.wave, source.first + from, source.first + to, count, placeOf(at), destChannels()}, gains,
            ramps.known);
    }

    std::int32_t destChannels() const { return dest.channels == 2 ? 2 : 1; }

    float* placeOf(std::int64_t at) const { return dest.frames + (at - begin) * destChannels(); }

    const StretchSource& source;
    const StretchDest& dest;
    StereoGain gain;
    std::int64_t begin;
    Ramps ramps;
};

void renderPasses(const RunMixer& mixer, const StretchRequest& request) {
    const PassPlan plan = planPasses(request.source, request.target, request.sampleRate);
    for (std::int64_t pos = request.begin, stop = 0; pos < request.end; pos = stop) {
        const Pass pass = passAt(plan, pos);
        stop = std::min(request.end, pos < pass.fadeStart ? pass.fadeStart : pass.end);
        const std::int64_t from = pos - pass.offset;
        if (pos < pass.fadeStart || pass.toCome < 1) {
            mixer.plain(pos, from, stop - pos);
            continue;
        }
        // The end of the source cuts both sides of the crossfade alike.
        const std::int64_t count = std::min(stop - pos, request.source - from);
        const FadePlace fade{static_cast<double>(plan.fade), static_cast<double>(pos - pass.fadeStart)};
        mixer.crossfade(pos, from, from - plan.step, count, fade);
    }
}

void renderHeadTail(const RunMixer& mixer, const StretchRequest& request) {
    const HeadTailPlan plan = planHeadTail(request.source, request.target, request.sampleRate);
    const std::int64_t headEnd = std::min(request.end, plan.fadeStart);
    if (request.begin < headEnd) mixer.plain(request.begin, request.begin, headEnd - request.begin);
    const std::int64_t pos = std::max(request.begin, plan.fadeStart);
    if (pos >= request.end) return;
    // The tail ends with the source where the target ends, so neither side can run past the source.
    const FadePlace fade{static_cast<double>(plan.fade), static_cast<double>(pos - plan.fadeStart)};
    mixer.crossfade(pos, pos, pos + plan.skip, request.end - pos, fade);
}

}  // namespace

StereoGain grainGain(float padVolume, float padPan, double grainVolume, double grainPan) {
    const float padLeft = std::min((1.0f - padPan) * 2.0f, 1.0f);
    const float padRight = std::min(padPan * 2.0f, 1.0f);
    const double grainLeft = std::min((1.0 - grainPan) * 2.0, 1.0);
    const double grainRight = std::min(grainPan * 2.0, 1.0);
    const auto left = static_cast<float>(grainLeft * static_cast<double>(padLeft));
    const auto right = static_cast<float>(grainRight * static_cast<double>(padRight));
    return {static_cast<float>(static_cast<double>(left) * static_cast<double>(padVolume) * grainVolume),
            static_cast<float>(static_cast<double>(right) * static_cast<double>(padVolume) * grainVolume)};
}

void renderStretched(const StretchSource& source, const StretchSpan& span, const StretchDest& dest,
                     StereoGain gain, Ramps ramps) {
    const auto request = checkRequest(source, span);
    if (!request) return;
    const RunMixer mixer(source, dest, gain, request->begin, ramps);
    if (request->target == request->source) {
        mixer.plain(request->begin, request->begin, request->end - request->begin);
    } else if (request->target > request->source) {
        renderPasses(mixer, *request);
    } else {
        renderHeadTail(mixer, *request);
    }
}

}  // namespace marnoth
