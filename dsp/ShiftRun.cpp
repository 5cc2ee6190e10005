#include "dsp/ShiftRun.h"

#include <algorithm>

#include "dsp/WideRegisters.h"

namespace marnoth::shift {
namespace {

/// Sums and differences of two numbers of this size fit into 32 bits.
constexpr std::int64_t kMostForVectors = std::int64_t{1} << 29;

/// The values of one frame; of a mono source only `left`.
struct Frame {
    float left = 0;
    float right = 0;
};

/// Linear interpolation. The clamped form reads frames outside the wave as the wave's first or its guard
/// frame, also of the two that one value lies between; the other may be used where no read leaves the wave.
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

/// Where a target frame plays.
struct Place {
    std::int64_t frame;
    float fraction;
};

Place placeOf(std::int64_t target, double speed) {
    const double place = static_cast<double>(target) * speed;
    const auto frame = static_cast<std::int64_t>(place);
    return {frame, static_cast<float>(place - static_cast<double>(frame))};
}

template <int sourceChannels, int destChannels, bool clamped>
void addSteady(const Run& run) {
    const Reader<sourceChannels, clamped> reader(run.wave, run.base);
    const StereoGain gain = run.gain;
    const double speed = run.speed;
    float* __restrict dest = run.dest;
    for (std::int64_t i = run.begin; i < run.end; ++i, dest += destChannels) {
        const Place place = placeOf(i, speed);
        addFrame<sourceChannels, destChannels>(dest, reader.read(place.frame, place.fraction), gain);
    }
}

template <int sourceChannels, int destChannels, bool clamped>
void addFading(const Run& run) {
    const Reader<sourceChannels, clamped> out(run.wave, run.base);
    const Reader<sourceChannels, clamped> in(run.wave, run.base + run.fade.offset);
    const StereoGain gain = run.gain;
    const double speed = run.speed;
    const std::int64_t start = run.fade.start;
    const auto length = static_cast<float>(run.fade.length);
    float* __restrict dest = run.dest;
    for (std::int64_t i = run.begin; i < run.end; ++i, dest += destChannels) {
        const Place place = placeOf(i, speed);
        const float x = static_cast<float>(place.frame - start) / length;
        const Frame value =
            crossfaded(out.read(place.frame, place.fraction), in.read(place.frame, place.fraction), x);
        addFrame<sourceChannels, destChannels>(dest, value, gain);
    }
}

/// Whether all reads at the playhead plus `offset` are of the wave's own frames or its guard frame.
bool staysInside(const Run& run, std::int64_t offset) {
    return run.base + offset + frameAt(run.begin, run.speed) >= 0 &&
           run.base + offset + frameAt(run.end - 1, run.speed) + 1 <= run.wave.frames;
}

bool staysInside(const Run& run) {
    return staysInside(run, 0) && (run.fade.length == 0 || staysInside(run, run.fade.offset));
}

template <int sourceChannels, int destChannels, bool clamped>
void addFrames(const Run& run) {
    if (run.fade.length > 0) {
        addFading<sourceChannels, destChannels, clamped>(run);
    } else {
        addSteady<sourceChannels, destChannels, clamped>(run);
    }
}

template <int sourceChannels, int destChannels>
void addFrames(const Run& run) {
    if (staysInside(run)) {
        addFrames<sourceChannels, destChannels, false>(run);
    } else {
        addFrames<sourceChannels, destChannels, true>(run);
    }
}

Run withoutFirst(const Run& run, std::int32_t frames) {
    Run rest = run;
    rest.begin += frames;
    rest.dest += std::int64_t{frames} * (run.destChannels == 2 ? 2 : 1);
    return rest;
}

template <class... Numbers>
bool areSmall(Numbers... numbers) {
    return ((numbers >= -kMostForVectors && numbers <= kMostForVectors) && ...);
}

}  // namespace

void renderPlain(const Run& run) {
    const bool stereoDest = run.destChannels == 2;
    if (run.wave.channels == 2) {
        stereoDest ? addFrames<2, 2>(run) : addFrames<2, 1>(run);
    } else {
        stereoDest ? addFrames<1, 2>(run) : addFrames<1, 1>(run);
    }
}

bool isForVectors(const Run& run) {
    return areSmall(run.begin, run.end, frameAt(run.begin, run.speed), frameAt(run.end, run.speed),
                    run.wave.frames, run.base, run.fade.start, run.fade.offset) &&
           staysInside(run);
}

VectorForm widestForm() {
#if defined(__x86_64__)
    return has512() ? renderBy8 : has256() ? renderBy4 : renderBy2;
#else
    return nullptr;
#endif
}

void renderRun(const Run& run) {
    const VectorForm form = widestForm();
    const std::int32_t done = form && isForVectors(run) ? form(run) : 0;
    if (run.begin + done < run.end) renderPlain(withoutFirst(run, done));
}

}  // namespace marnoth::shift
