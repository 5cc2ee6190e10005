#include "sample/Resample.h"

#include <algorithm>
#include <cstddef>

#include "dsp/WideRegisters.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace marnoth {
namespace {

constexpr double kRoot = 1.41421356237309504880;
/// What is prepared together, so that the compiler takes several at once.
constexpr int kFramesAtOnce = 256;

/// Where a run of new frames lies in a piece of the source: whole frames, and the weights of the four points
/// from two frames before there on. The outer two points share a weight.
struct Positions {
    std::int32_t frame[kFramesAtOnce];
    double outer[kFramesAtOnce];
    double left[kFramesAtOnce];
    double right[kFramesAtOnce];
};

/// A run of new frames from `first` on, out of a piece that begins at frame `pieceStart` of the source.
struct Run {
    std::int64_t first;
    int count;
    double ratio;
    std::int64_t pieceStart;
};

[[gnu::always_inline]] inline void prepare(Positions* const& positions, const Run& run) {
    Positions& at = *positions;
    const auto start = static_cast<double>(run.first);
    const double ratio = run.ratio;
    const int count = run.count;
    const auto pieceStart = static_cast<std::int32_t>(run.pieceStart);
    for (int i = 0; i < count; ++i) {
        const double t = (start + i) / ratio;
        const auto frame = static_cast<std::int32_t>(t);
        const double f = t - frame;
        at.frame[i] = frame - pieceStart;
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

#if defined(__x86_64__)
/// Both sides of a frame and of the one behind it.
[[gnu::target("avx2")]] inline __m256d twoFrames(const float* frame) {
    return _mm256_cvtps_pd(_mm_loadu_ps(frame));
}

/// Weights of two new frames, each for both sides.
[[gnu::target("avx2")]] inline __m256d twoWeights(const double* weight) {
    return _mm256_permute4x64_pd(_mm256_castpd128_pd256(_mm_loadu_pd(weight)), 0x50);
}

/// Two new frames at a time. For processors where `has256` says so.
[[gnu::target("avx2")]] void blendStereo(const SourceWave& source, const Positions& at, int count,
                                         float* dest) {
    int i = 0;
    for (; count - i >= 2; i += 2, dest += 4) {
        const float* a = source.samples + (std::int64_t{at.frame[i]} - 2) * 2;
        const float* b = source.samples + (std::int64_t{at.frame[i + 1]} - 2) * 2;
        const __m256d a01 = twoFrames(a), a23 = twoFrames(a + 4);
        const __m256d b01 = twoFrames(b), b23 = twoFrames(b + 4);
        const __m256d x0 = _mm256_permute2f128_pd(a01, b01, 0x20);
        const __m256d x1 = _mm256_permute2f128_pd(a01, b01, 0x31);
        const __m256d x2 = _mm256_permute2f128_pd(a23, b23, 0x20);
        const __m256d x3 = _mm256_permute2f128_pd(a23, b23, 0x31);
        const __m256d sum = (x0 + x3) * twoWeights(at.outer + i) + x1 * twoWeights(at.left + i) +
                            x2 * twoWeights(at.right + i);
        _mm_storeu_ps(dest, _mm256_cvtpd_ps(sum));
    }
    if (i < count) blendInside(source, at, i, dest);
}
#endif

void blendRun(const SourceWave& source, const Positions& at, int count, float* dest) {
    const bool inside = isInside(source, at.frame[0]) && isInside(source, at.frame[count - 1]);
    if (inside && source.channels == 1) return blendMono(source, at, count, dest);
#if defined(__x86_64__)
    if (inside && source.channels == 2 && has256()) return blendStereo(source, at, count, dest);
#endif
    blend(source, at, count, dest);
}

/// The new frames from `begin` to `end`, into their places in `dest`.
void resamplePiece(const SourceWave& piece, std::int64_t pieceStart, double ratio, std::int64_t begin,
                   std::int64_t end, float* dest) {
    Positions at;
    for (std::int64_t first = begin; first < end; first += kFramesAtOnce) {
        const auto count = static_cast<int>(std::min<std::int64_t>(end - first, kFramesAtOnce));
        withWidest<prepare>(&at, Run{first, count, ratio, pieceStart});
        blendRun(piece, at, count, dest + first * piece.channels);
    }
}

}  // namespace

void resample(const SourceWave& source, float* dest, std::int64_t frames, double ratio) {
    resamplePiece(source, 0, ratio, 0, frames, dest);
}

RateChange::RateChange(float* dest, std::int64_t frames, double ratio, std::int32_t channels,
                       std::int64_t blockFrames)
    : dest_(dest),
      frames_(frames),
      ratio_(ratio),
      channels_(channels),
      window_(static_cast<std::size_t>((kReach + blockFrames) * channels)) {}

void RateChange::take(std::int64_t count) {
    taken_ += count;
    writeUpTo(firstBeyond(taken_ - 1), kReach + count);
    std::copy_n(window_.data() + count * channels_, kReach * channels_, window_.data());
}

void RateChange::finish() {
    writeUpTo(frames_, kReach);
}

void RateChange::writeUpTo(std::int64_t end, std::int64_t windowFrames) {
    const std::int64_t windowStart = taken_ - windowFrames;
    resamplePiece({window_.data(), windowFrames, channels_}, windowStart, ratio_, written_, end, dest_);
    written_ = std::max(written_, end);
}

/// The first new frame that doesn't lie before a frame of the source.
std::int64_t RateChange::firstBeyond(std::int64_t sourceFrame) const {
    const auto place = static_cast<double>(sourceFrame);
    auto frame = std::min(static_cast<std::int64_t>(place * ratio_), frames_);
    while (frame > 0 && static_cast<double>(frame - 1) / ratio_ >= place) --frame;
    while (frame < frames_ && static_cast<double>(frame) / ratio_ < place) ++frame;
    return frame;
}

}  // namespace marnoth
