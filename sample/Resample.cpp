#include "sample/Resample.h"

#include <algorithm>

#include "dsp/WideRegisters.h"

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

namespace marnoth {
namespace {

constexpr double kRoot = 1.41421356237309504880;
/// What is prepared together, so that the compiler takes several at once.
constexpr int kFramesAtOnce = 256;

/// Where a run of new frames lies in the source: whole frames, and the weights of the four points from two
/// frames before there on. The outer two points share a weight.
struct Positions {
    std::int32_t frame[kFramesAtOnce];
    double outer[kFramesAtOnce];
    double left[kFramesAtOnce];
    double right[kFramesAtOnce];
};

/// A run of new frames from `first` on.
struct Run {
    std::int64_t first;
    int count;
    double ratio;
};

[[gnu::always_inline]] inline void prepare(Positions* const& positions, const Run& run) {
    Positions& at = *positions;
    const auto start = static_cast<double>(run.first);
    const double ratio = run.ratio;
    const int count = run.count;
    for (int i = 0; i < count; ++i) {
        const double t = (start + i) / ratio;
        const auto frame = static_cast<std::int32_t>(t);
        const double f = t - frame;
        at.frame[i] = frame;
        at.outer[i] = kRoot * f * f - f * f - kRoot * f + f;
        at.left[i] = kRoot / 2 - kRoot * f * f + f * f;
        at.right[i] = 1 - kRoot / 2 + (2 * kRoot - 2) * f + (1 - kRoot) * f * f;
    }
}

/// A value of the source, or of the silence around it.
double valueAt(const SourceWave& source, std::int64_t frame, int channel) {
    return frame >= 0 && frame < source.frames ? source.samples[frame * source.channels + channel] : 0.0f;
}

float weigh(const Positions& at, int i, double x0, double x1, double x2, double x3) {
    return static_cast<float>((x0 + x3) * at.outer[i] + x1 * at.left[i] + x2 * at.right[i]);
}

void blendAtEdge(const SourceWave& source, const Positions& at, int i, float* dest) {
    const std::int64_t first = std::int64_t{at.frame[i]} - 2;
    for (int c = 0; c < source.channels; ++c) {
        dest[c] = weigh(at, i, valueAt(source, first, c), valueAt(source, first + 1, c),
                        valueAt(source, first + 2, c), valueAt(source, first + 3, c));
    }
}

void blendInside(const SourceWave& source, const Positions& at, int i, float* dest) {
    const int channels = source.channels;
    const float* x = source.samples + (std::int64_t{at.frame[i]} - 2) * channels;
    for (int c = 0; c < channels; ++c) {
        dest[c] = weigh(at, i, x[c], x[channels + c], x[2 * channels + c], x[3 * channels + c]);
    }
}

bool isInside(const SourceWave& source, std::int32_t frame) {
    return frame >= 2 && frame + std::int64_t{2} <= source.frames;
}

void blend(const SourceWave& source, const Positions& at, int count, float* dest) {
    for (int i = 0; i < count; ++i, dest += source.channels) {
        if (isInside(source, at.frame[i])) {
            blendInside(source, at, i, dest);
        } else {
            blendAtEdge(source, at, i, dest);
        }
    }
}

void blendMono(const SourceWave& source, const Positions& at, int count, float* dest) {
    for (int i = 0; i < count; ++i) {
        const float* x = source.samples + (at.frame[i] - 2);
        dest[i] = weigh(at, i, x[0], x[1], x[2], x[3]);
    }
}

/// Both sides of a frame, left first.
using Sides [[gnu::vector_size(16)]] = double;

#if defined(__x86_64__)
[[gnu::always_inline]] inline Sides sidesAt(const float* frame) {
    return _mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(frame))));
}

[[gnu::always_inline]] inline void put(float* frame, Sides sides) {
    _mm_storel_pi(reinterpret_cast<__m64*>(frame), _mm_cvtpd_ps(sides));
}
#else
Sides sidesAt(const float* frame) {
    return Sides{frame[0], frame[1]};
}

void put(float* frame, Sides sides) {
    frame[0] = static_cast<float>(sides[0]);
    frame[1] = static_cast<float>(sides[1]);
}
#endif

/// Both sides of a frame share their weights.
[[gnu::always_inline]] inline void blendStereo(const SourceWave& source, const Positions& at,
                                               const int& count, float* const& to) {
    float* dest = to;
    for (int i = 0; i < count; ++i, dest += 2) {
        const float* x = source.samples + (std::int64_t{at.frame[i]} - 2) * 2;
        const Sides sum = (sidesAt(x) + sidesAt(x + 6)) * at.outer[i] + sidesAt(x + 2) * at.left[i] +
                          sidesAt(x + 4) * at.right[i];
        put(dest, sum);
    }
}

void blendRun(const SourceWave& source, const Positions& at, int count, float* dest) {
    const bool inside = isInside(source, at.frame[0]) && isInside(source, at.frame[count - 1]);
    if (inside && source.channels == 1) return blendMono(source, at, count, dest);
    if (inside && source.channels == 2) return withWidest<blendStereo>(source, at, count, dest);
    blend(source, at, count, dest);
}

}  // namespace

void resample(const SourceWave& source, float* dest, std::int64_t frames, double ratio) {
    Positions at;
    for (std::int64_t first = 0; first < frames; first += kFramesAtOnce) {
        const auto count = static_cast<int>(std::min<std::int64_t>(frames - first, kFramesAtOnce));
        withWidest<prepare>(&at, Run{first, count, ratio});
        blendRun(source, at, count, dest + first * source.channels);
    }
}

}  // namespace marnoth
