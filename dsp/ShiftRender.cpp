#include <algorithm>
#include <array>
#include <cmath>

#include "dsp/ShiftRun.h"
#include "dsp/Stretch.h"
#include "dsp/StretchPlan.h"

namespace marnoth {
namespace {

constexpr double kOctavesPerSemitone = 0.08333333333333333;

/// 2 ^ (semitones / 12) for all transpositions that notes and grains add up to; a power takes as long as 30
/// frames.
class Speeds {
public:
    Speeds() {
        for (std::int32_t i = -kMost; i <= kMost; ++i) table.data()[i + kMost] = computed(i);
    }

    double of(std::int32_t semitones) const {
        if (semitones < -kMost || semitones > kMost) return computed(semitones);
        return table.data()[semitones + kMost];
    }

private:
    static constexpr std::int32_t kMost = 256;

    static double computed(std::int32_t semitones) { return std::pow(2.0, semitones * kOctavesPerSemitone); }

    std::array<double, 2 * kMost + 1> table;
};

const Speeds speeds;

/// Ratios between these count as an unchanged length.
constexpr double kLeastUnchanged = 0.999999999;
constexpr double kMostUnchanged = 1.000000001;

/// Which source frame a target frame plays.
class Playhead {
public:
    explicit Playhead(double speed) : speed(speed) {}

    std::int64_t frameAt(std::int64_t target) const { return shift::frameAt(target, speed); }

    /// The first target frame in `begin` to `end` that plays source frame `frame` or a later one; `end` if
    /// none does.
    std::int64_t firstReaching(std::int64_t frame, std::int64_t begin, std::int64_t end) const {
        if (frameAt(end - 1) < frame) return end;
        while (begin < end) {
            const std::int64_t middle = begin + (end - begin) / 2;
            if (frameAt(middle) < frame) {
                begin = middle + 1;
            } else {
                end = middle;
            }
        }
        return begin;
    }

private:
    double speed;
};

/// Renders runs of target frames, each all plain or all inside one crossfade.
class RunRenderer {
public:
    RunRenderer(const StretchSource& source, const StretchDest& dest, StereoGain gain, std::int64_t begin,
                double speed)
        : source(source), dest(dest), gain(gain), begin(begin), speed(speed) {}

    /// Target frames `from` to `to`, read at the playhead plus `offset`; without a fade they are plain.
    void render(std::int64_t from, std::int64_t to, std::int64_t offset, const shift::Fade& fade = {}) const {
        const std::int32_t destChannels = dest.channels == 2 ? 2 : 1;
        float* const place = dest.frames + (from - begin) * destChannels;
        shift::renderRun(
            {source.wave, source.first + offset, speed, from, to, place, destChannels, gain, fade});
    }

private:
    const StretchSource& source;
    const StretchDest& dest;
    StereoGain gain;
    std::int64_t begin;
    double speed;
};

/// Source frames that the whole target consumes.
std::int64_t consumedFrames(std::int64_t target, double speed) {
    return static_cast<std::int64_t>(static_cast<double>(target) * speed + 0.5);
}

void renderPasses(const RunRenderer& renderer, const StretchRequest& request, const Playhead& playhead,
                  double speed) {
    const std::int64_t consumed = std::max(consumedFrames(request.target, speed), request.source);
    const PassPlan plan = planPasses(request.source, consumed, request.sampleRate);
    for (std::int64_t i = request.begin, next = 0; i < request.end; i = next) {
        const std::int64_t frame = playhead.frameAt(i);
        const Pass pass = passAt(plan, frame);
        // Rounding can leave the playhead on the end itself; then just this frame shares the pass.
        const std::int64_t passEnd = frame < pass.end ? pass.end : frame + 1;
        const bool plain = frame < pass.fadeStart || frame > pass.end || pass.toCome < 1 || plan.fade < 1;
        next = playhead.firstReaching(frame < pass.fadeStart ? pass.fadeStart : passEnd, i, request.end);
        if (plain) {
            renderer.render(i, next, -pass.offset);
        } else {
            renderer.render(i, next, -pass.offset, {pass.fadeStart, plan.fade, -plan.step});
        }
    }
}

void renderHeadTail(const RunRenderer& renderer, const StretchRequest& request, const Playhead& playhead,
                    double speed) {
    const HeadTailPlan plan =
        planHeadTail(request.source, consumedFrames(request.target, speed), request.sampleRate);
    // The frame on which the crossfade starts is still a plain one.
    const std::int64_t fadeBegin =
        plan.fade < 1 ? request.end : playhead.firstReaching(plan.fadeStart + 1, request.begin, request.end);
    if (request.begin < fadeBegin) renderer.render(request.begin, fadeBegin, 0);
    if (fadeBegin < request.end) {
        renderer.render(fadeBegin, request.end, 0, {plan.fadeStart, plan.fade, plan.skip});
    }
}

/// Whether every source position of the request is a number that the formulas can carry.
bool isPlayable(const StretchRequest& request, double speed, double ratio) {
    const double furthest = static_cast<double>(std::max(request.target, -request.begin)) * speed;
    if (!(speed > 0) || !(furthest < static_cast<double>(kMostFrames))) return false;
    // A shortened source is counted in 32 bits.
    return ratio >= kLeastUnchanged || furthest < 2147483647.0;
}

}  // namespace

void renderShifted(const StretchSource& source, const StretchSpan& span, const StretchDest& dest,
                   StereoGain gain, std::int32_t semitones, double pitchRatio, Ramps ramps) {
    const auto request = checkRequest(source, span);
    if (!request || !std::isfinite(pitchRatio) || !(pitchRatio > 0)) return;
    const double speed = speeds.of(semitones) * pitchRatio;
    const double ratio = static_cast<double>(request->target) / static_cast<double>(request->source) * speed;
    if (!isPlayable(*request, speed, ratio)) return;
    const bool unchanged = ratio >= kLeastUnchanged && ratio <= kMostUnchanged;
    if (unchanged && request->target == request->source)
        return renderStretched(source, span, dest, gain, ramps);

    if (source.wave.channels != 1 && source.wave.channels != 2) return;
    const Playhead playhead(speed);
    const RunRenderer renderer(source, dest, gain, request->begin, speed);
    if (ratio > kMostUnchanged) {
        renderPasses(renderer, *request, playhead, speed);
    } else if (ratio < kLeastUnchanged) {
        renderHeadTail(renderer, *request, playhead, speed);
    } else {
        renderer.render(request->begin, request->end, 0);
    }
}

}  // namespace marnoth
