#include "sample/Resample.h"

#include <algorithm>

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

    void prepare(std::int64_t first, int count, double ratio) {
        const auto start = static_cast<double>(first);
        for (int i = 0; i < count; ++i) {
            const double t = (start + i) / ratio;
            frame[i] = static_cast<std::int32_t>(t);
            const double f = t - frame[i];
            outer[i] = kRoot * f * f - f * f - kRoot * f + f;
            left[i] = kRoot / 2 - kRoot * f * f + f * f;
            right[i] = 1 - kRoot / 2 + (2 * kRoot - 2) * f + (1 - kRoot) * f * f;
        }
    }
    float weigh(int i, double x0, double x1, double x2, double x3) const {
        return static_cast<float>((x0 + x3) * outer[i] + x1 * left[i] + x2 * right[i]);
    }
};

/// A value of the source, or of the silence around it.
double valueAt(const SourceWave& source, std::int64_t frame, int channel) {
    return frame >= 0 && frame < source.frames ? source.samples[frame * source.channels + channel] : 0.0f;
}

void blendAtEdge(const SourceWave& source, const Positions& at, int i, float* dest) {
    const std::int64_t first = std::int64_t{at.frame[i]} - 2;
    for (int c = 0; c < source.channels; ++c) {
        dest[c] = at.weigh(i, valueAt(source, first, c), valueAt(source, first + 1, c),
                           valueAt(source, first + 2, c), valueAt(source, first + 3, c));
    }
}

/// `kChannels` is 0 when the number isn't known beforehand.
template <int kChannels>
void blend(const SourceWave& source, const Positions& at, int count, float* dest) {
    const int channels = kChannels ? kChannels : source.channels;
    for (int i = 0; i < count; ++i, dest += channels) {
        const std::int64_t first = std::int64_t{at.frame[i]} - 2;
        if (first < 0 || first + 4 > source.frames) {
            blendAtEdge(source, at, i, dest);
            continue;
        }
        const float* x = source.samples + first * channels;
        for (int c = 0; c < channels; ++c) {
            dest[c] = at.weigh(i, x[c], x[channels + c], x[2 * channels + c], x[3 * channels + c]);
        }
    }
}

}  // namespace

void resample(const SourceWave& source, float* dest, std::int64_t frames, double ratio) {
    Positions at;
    for (std::int64_t first = 0; first < frames; first += kFramesAtOnce) {
        const auto count = static_cast<int>(std::min<std::int64_t>(frames - first, kFramesAtOnce));
        at.prepare(first, count, ratio);
        float* run = dest + first * source.channels;
        switch (source.channels) {
            case 1:
                blend<1>(source, at, count, run);
                break;
            case 2:
                blend<2>(source, at, count, run);
                break;
            default:
                blend<0>(source, at, count, run);
        }
    }
}

}  // namespace marnoth
