#include <algorithm>
#include <cmath>

#include "dsp/Stretch.h"
#include "dsp/StretchPlan.h"

namespace marnoth {
namespace {

constexpr double kOctavesPerSemitone = 0.08333333333333333;

/// Ratios between these count as an unchanged length.
constexpr double kLeastUnchanged = 0.999999999;
constexpr double kMostUnchanged = 1.000000001;

/// A place in the source, between frame `frame` and the next.
struct ReadPoint {
    std::int64_t frame;
    float fraction;
};

/// Which source frame a target frame plays.
class Playhead {
public:
    explicit Playhead(double speed) : speed(speed) {}

    std::int64_t frameAt(std::int64_t target) const {
        return static_cast<std::int64_t>(static_cast<double>(target) * speed);
    }

    ReadPoint pointAt(std::int64_t target) const {
        const double place = static_cast<double>(target) * speed;
        const auto frame = static_cast<std::int64_t>(place);
        return {frame, static_cast<float>(place - static_cast<double>(frame))};
    }

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

/// The values of one frame; of a mono source only `left`.
struct Frame {
    float left = 0;
    float right = 0;
};

/// Linear interpolation. The clamped form reads frames outside the wave as the wave's first or its guard
/// frame, each for itself; the other may be used where no read leaves the wave.
template <int channels, bool clamped>
class Reader {
public:
    /// Frame 0 of the reader is frame `first` of the wave.
    Reader(const SourceWave& wave, std::int64_t first) : wave(wave), first(first) {}

    Frame read(std::int64_t frame, float fraction) const {
        const float* here = at(first + frame);
        const float* next = at(first + frame + 1);
        Frame value;
        value.left = between(here[0], next[0], fraction);
        if constexpr (channels == 2) value.right = between(here[1], next[1], fraction);
        return value;
    }

private:
    static float between(float here, float next, float fraction) {
        return fraction * next + (1.0f - fraction) * here;
    }

    const float* at(std::int64_t frame) const {
        if constexpr (clamped) frame = std::clamp<std::int64_t>(frame, 0, wave.frames);
        return wave.samples + frame * channels;
    }

    SourceWave wave;
    std::int64_t first;
};

template <int sourceChannels, int destChannels>
void addFrame(float* dest, Frame value, StereoGain gain) {
    if constexpr (sourceChannels == 1 && destChannels == 1) {
        dest[0] += value.left * gain.left;
    } else if constexpr (sourceChannels == 1) {
        dest[0] += value.left * gain.left;
        dest[1] += value.left * gain.right;
    } else if constexpr (destChannels == 1) {
        dest[0] += (value.right * gain.right + value.left * gain.left) * 0.5f;
    } else {
        dest[0] += value.left * gain.left;
        dest[1] += value.right * gain.right;
    }
}

Frame crossfaded(Frame from, Frame to, float x) {
    const float falling = 1.0f - x * x;
    const float rising = 1.0f - (1.0f - x) * (1.0f - x);
    return {from.left * falling + to.left * rising, from.right * falling + to.right * rising};
}

/// A crossfade in source frames, counted like the playhead.
struct SourceFade {
    std::int64_t start;   ///< where it begins
    std::int64_t length;  ///< at least 1
    std::int64_t offset;  ///< from what fades out to what fades in
};

/// Renders runs of target frames, each all plain or all inside one crossfade.
template <int sourceChannels, int destChannels>
class RunRenderer {
public:
    RunRenderer(const StretchSource& source, const StretchDest& dest, StereoGain gain, std::int64_t begin,
                Playhead playhead)
        : source(source), dest(dest), gain(gain), begin(begin), playhead(playhead) {}

    /// Target frames `from` to `to`, read at the playhead plus `offset`.
    void plain(std::int64_t from, std::int64_t to, std::int64_t offset) const {
        if (staysInside(from, to, offset)) {
            plainWith<false>(from, to, offset);
        } else {
            plainWith<true>(from, to, offset);
        }
    }

    void fading(std::int64_t from, std::int64_t to, std::int64_t offset, const SourceFade& fade) const {
        if (staysInside(from, to, offset) && staysInside(from, to, offset + fade.offset)) {
            fadingWith<false>(from, to, offset, fade);
        } else {
            fadingWith<true>(from, to, offset, fade);
        }
    }

private:
    template <bool clamped>
    using ReaderHere = Reader<sourceChannels, clamped>;

    bool staysInside(std::int64_t from, std::int64_t to, std::int64_t offset) const {
        return source.first + playhead.frameAt(from) + offset >= 0 &&
               source.first + playhead.frameAt(to - 1) + offset + 1 <= source.wave.frames;
    }

    float* destAt(std::int64_t target) const { return dest.frames + (target - begin) * destChannels; }

    template <bool clamped>
    void plainWith(std::int64_t from, std::int64_t to, std::int64_t offset) const {
        const ReaderHere<clamped> reader(source.wave, source.first + offset);
        const Playhead head = playhead;
        const StereoGain level = gain;
        float* __restrict out = destAt(from);
        for (std::int64_t i = from; i < to; ++i, out += destChannels) {
            const ReadPoint point = head.pointAt(i);
            addFrame<sourceChannels, destChannels>(out, reader.read(point.frame, point.fraction), level);
        }
    }

    template <bool clamped>
    void fadingWith(std::int64_t from, std::int64_t to, std::int64_t offset, const SourceFade& fade) const {
        const ReaderHere<clamped> out(source.wave, source.first + offset);
        const ReaderHere<clamped> in(source.wave, source.first + offset + fade.offset);
        const Playhead head = playhead;
        const StereoGain level = gain;
        const auto length = static_cast<float>(fade.length);
        float* __restrict place = destAt(from);
        for (std::int64_t i = from; i < to; ++i, place += destChannels) {
            const ReadPoint point = head.pointAt(i);
            const float x = static_cast<float>(point.frame - fade.start) / length;
            const Frame value =
                crossfaded(out.read(point.frame, point.fraction), in.read(point.frame, point.fraction), x);
            addFrame<sourceChannels, destChannels>(place, value, level);
        }
    }

    const StretchSource& source;
    const StretchDest& dest;
    StereoGain gain;
    std::int64_t begin;
    Playhead playhead;
};

/// Source frames that the whole target consumes.
std::int64_t consumedFrames(std::int64_t target, double speed) {
    return static_cast<std::int64_t>(static_cast<double>(target) * speed + 0.5);
}

template <class Renderer>
void renderPasses(const Renderer& renderer, const StretchRequest& request, const Playhead& playhead,
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
            renderer.plain(i, next, -pass.offset);
        } else {
            renderer.fading(i, next, -pass.offset, {pass.fadeStart, plan.fade, -plan.step});
        }
    }
}

template <class Renderer>
void renderHeadTail(const Renderer& renderer, const StretchRequest& request, const Playhead& playhead,
                    double speed) {
    const HeadTailPlan plan =
        planHeadTail(request.source, consumedFrames(request.target, speed), request.sampleRate);
    // The frame on which the crossfade starts is still a plain one.
    const std::int64_t fadeBegin =
        plan.fade < 1 ? request.end : playhead.firstReaching(plan.fadeStart + 1, request.begin, request.end);
    if (request.begin < fadeBegin) renderer.plain(request.begin, fadeBegin, 0);
    if (fadeBegin < request.end) {
        renderer.fading(fadeBegin, request.end, 0, {plan.fadeStart, plan.fade, plan.skip});
    }
}

template <int sourceChannels, int destChannels>
void renderWith(const StretchSource& source, const StretchRequest& request, const StretchDest& dest,
                StereoGain gain, double speed, double ratio) {
    const Playhead playhead(speed);
    const RunRenderer<sourceChannels, destChannels> renderer(source, dest, gain, request.begin, playhead);
    if (ratio > kMostUnchanged) {
        renderPasses(renderer, request, playhead, speed);
    } else if (ratio < kLeastUnchanged) {
        renderHeadTail(renderer, request, playhead, speed);
    } else {
        renderer.plain(request.begin, request.end, 0);
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
                   StereoGain gain, std::int32_t semitones, double pitchRatio) {
    const auto request = checkRequest(source, span);
    if (!request || !std::isfinite(pitchRatio) || !(pitchRatio > 0)) return;
    const double speed = std::pow(2.0, semitones * kOctavesPerSemitone) * pitchRatio;
    const double ratio = static_cast<double>(request->target) / static_cast<double>(request->source) * speed;
    if (!isPlayable(*request, speed, ratio)) return;
    const bool unchanged = ratio >= kLeastUnchanged && ratio <= kMostUnchanged;
    if (unchanged && request->target == request->source) return renderStretched(source, span, dest, gain);

    const bool stereoDest = dest.channels == 2;
    if (source.wave.channels == 1) {
        const auto render = stereoDest ? renderWith<1, 2> : renderWith<1, 1>;
        render(source, *request, dest, gain, speed, ratio);
    } else if (source.wave.channels == 2) {
        const auto render = stereoDest ? renderWith<2, 2> : renderWith<2, 1>;
        render(source, *request, dest, gain, speed, ratio);
    }
}

}  // namespace marnoth
