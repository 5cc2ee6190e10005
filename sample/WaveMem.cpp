#include "sample/WaveMem.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <utility>

#include "dsp/Tail.h"

namespace marnoth {
namespace {

using Samples = std::unique_ptr<float[]>;

/// Storage with unspecified contents; null when there is none, or `count` is beyond reason.
Samples allocate(std::int64_t count) {
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max() / 64;
    return Samples(count < 0 || count > kMost ? nullptr
                                              : new (std::nothrow) float[static_cast<std::size_t>(count)]);
}

Samples allocateSilence(std::int64_t count) {
    Samples samples = allocate(count);
    if (samples) std::fill_n(samples.get(), count, 0.0f);
    return samples;
}

/// A copy of `samples` with `margin` silent values on either side.
Samples surroundWithSilence(Samples samples, std::int64_t count, std::int64_t margin) {
    Samples work = allocate(count + 2 * margin);
    if (!work) return work;
    std::fill_n(work.get(), margin, 0.0f);
    std::copy_n(samples.get(), count, work.get() + margin);
    std::fill_n(work.get() + margin + count, margin, 0.0f);
    return work;
}

/// Weights of four neighbouring frames at the fraction `f` between the middle two.
struct Weights {
    explicit Weights(double f)
        : outer(kRoot * f * f - f * f - kRoot * f + f),
          left(kRoot / 2 - kRoot * f * f + f * f),
          right(1 - kRoot / 2 + (2 * kRoot - 2) * f + (1 - kRoot) * f * f) {}

    static constexpr double kRoot = 1.41421356237309504880;
    double outer;
    double left;
    double right;
};

/// Brings `work`, which has two silent frames on either side, to another rate. `kChannels` is 0 when the
/// number isn't known beforehand.
template <int kChannels>
void resampleFrames(const float* work, float* dest, std::int64_t frames, double ratio, int channels) {
    const int stride = kChannels ? kChannels : channels;
    for (std::int64_t i = 0; i < frames; ++i) {
        const double t = static_cast<double>(i) / ratio;
        const auto n = static_cast<std::int64_t>(t);
        const Weights weight(t - static_cast<double>(n));
        const float* x = work + n * stride;
        for (int c = 0; c < stride; ++c, ++x) {
            const double outer = static_cast<double>(x[0]) + static_cast<double>(x[3 * stride]);
            *dest++ = static_cast<float>(outer * weight.outer + x[stride] * weight.left +
                                         x[2 * stride] * weight.right);
        }
    }
}

/// Extremes of the frames since an entry of the peak table began.
struct Extremes {
    float low = 1.0f;
    float high = -1.0f;

    void fold(float sample) {
        if (sample <= low) low = sample;
        if (sample >= high) high = sample;
    }
    void store(float* entry) const {
        entry[0] = low;
        entry[1] = high;
    }
};

}  // namespace

RefPtr<CWaveMem> CWaveMem::make() {
    return RefPtr<CWaveMem>::adopt(new CWaveMem);
}

std::uint32_t CWaveMem::Release() {
    const std::uint32_t left = --refCount;
    if (left == 0) delete this;
    return left;
}

HRESULT CWaveMem::Create(std::int64_t frameCount, const WAVEFORMATEX& newFormat) {
    format = newFormat;
    frames = frameCount;
    samples.reset();
    byteSize = 0;
    if (frameCount < 0 || frameCount > kFrameLimit) return E_OUTOFMEMORY;
    const std::int64_t values = (format.nChannels * (frames + 1) + 3) / 4 * 4;
    samples = allocate(values);
    if (!samples) return E_OUTOFMEMORY;
    byteSize = static_cast<std::uint64_t>(values) * sizeof(float);
    // The block goes into project files as a whole: nothing in it may be left over from elsewhere.
    std::fill(samples.get() + frames * format.nChannels, samples.get() + values, 0.0f);
    return S_OK;
}

void CWaveMem::writeGuardFrame() {
    if (!samples || frames <= 0) return;
    float* guard = samples.get() + frames * format.nChannels;
    const float* last = guard - format.nChannels;
    guard[0] = last[0];
    if (format.nChannels == 2) guard[1] = last[1];
}

HRESULT CWaveMem::Resample(const WAVEFORMATEX& newFormat) {
    if (!samples) return E_FAIL;
    if (newFormat.nSamplesPerSec == format.nSamplesPerSec) return S_OK;
    const int channels = format.nChannels;
    const double ratio = static_cast<double>(newFormat.nSamplesPerSec) / format.nSamplesPerSec;
    const std::int64_t oldValues = frames * channels;

    const double newFrames = static_cast<double>(frames) * ratio + 0.5;
    const double mostValues = std::max(kResampleLimit, static_cast<double>(oldValues) * kMostGrowth);
    const Samples work = surroundWithSilence(std::exchange(samples, nullptr), oldValues, 2 * channels);
    byteSize = 0;
    if (!work || !(newFrames * channels <= mostValues)) return E_OUTOFMEMORY;

    rateRatio = ratio;
    frames = static_cast<std::int64_t>(newFrames);
    samples = allocate((frames + 1) * channels);
    if (!samples) return E_OUTOFMEMORY;
    byteSize = static_cast<std::uint64_t>((frames + 1) * channels) * sizeof(float);
    std::fill_n(samples.get() + frames * channels, channels, 0.0f);
    switch (channels) {
        case 1:
            resampleFrames<1>(work.get(), samples.get(), frames, ratio, 1);
            break;
        case 2:
            resampleFrames<2>(work.get(), samples.get(), frames, ratio, 2);
            break;
        default:
            resampleFrames<0>(work.get(), samples.get(), frames, ratio, channels);
    }
    writeGuardFrame();
    format.nSamplesPerSec = newFormat.nSamplesPerSec;
    return S_OK;
}

HRESULT CWaveMem::BuildPeaks(std::int32_t mode, std::int32_t points) {
    peakPoints = 0;
    if (mode != 0) return S_OK;
    peakCapacity = format.nChannels * points * 2;
    // A grain's offset and count are rounded each for itself, so that the last grain may reach one entry too
    // far.
    peaks = allocateSilence(peakCapacity + format.nChannels * 2);
    if (!peaks) return E_OUTOFMEMORY;
    peakPoints = points;
    if (samples) fillPeaks();
    return S_OK;
}

/// An entry's first frame is folded with the extremes of the entry before, and isn't part of the extremes
/// that its later frames leave there.
void CWaveMem::fillPeaks() {
    const int channels = format.nChannels;
    const double step = 1.0 / (static_cast<double>(frames) / peakPoints);
    Extremes left;
    Extremes right;
    std::int64_t last = 0;
    const float* frame = samples.get();
    for (std::int64_t i = 0; i < frames; ++i, frame += channels) {
        const auto point = static_cast<std::int64_t>(static_cast<double>(i) * step);
        if ((point + 1) * 2 * channels > peakCapacity) break;
        float* entry = peaks.get() + point * 2 * channels;
        left.fold(frame[0]);
        left.store(entry);
        if (channels == 2) {
            right.fold(frame[1]);
            right.store(entry + 2);
        }
        if (point != last) {
            left = right = Extremes{};
            last = point;
        }
    }
}

HRESULT CWaveMem::CreateTail(const CWaveMem& source, std::int64_t firstFrame, std::int64_t length) {
    if (length <= 0 || !source.samples) return E_FAIL;
    if (length > kFrameLimit) return E_OUTOFMEMORY;
    format = source.format;
    tailDecay = tailDecayPerFrame(length);
    tailFrames = 2 * length;
    frames = tailFrames;
    samples = allocateSilence(format.nChannels * (tailFrames + 1));
    if (!samples) return E_OUTOFMEMORY;
    renderTail(source.view(), firstFrame, length, static_cast<std::int32_t>(format.nSamplesPerSec),
               samples.get());
    return S_OK;
}

}  // namespace marnoth
