#include "sample/WaveMem.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "dsp/Tail.h"
#include "platform/system/FreshMemory.h"
#include "sample/PeakTable.h"
#include "sample/Resample.h"

namespace marnoth {
namespace {

using Values = std::unique_ptr<float[]>;

/// Storage with unspecified contents; null when there is none, or `count` is beyond reason.
Values allocate(std::int64_t count) {
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max() / 64;
    if (count < 0 || count > kMost) return nullptr;
    Values values(new (std::nothrow) float[static_cast<std::size_t>(count)]);
    expectFilling(values.get(), static_cast<std::size_t>(count) * sizeof(float));
    return values;
}

Values allocateSilence(std::int64_t count) {
    Values values = allocate(count);
    if (values) std::fill_n(values.get(), count, 0.0f);
    return values;
}

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
    // The block goes into project files as a whole: none of its bytes may be another object's old ones.
    std::fill(samples.get() + frames * format.nChannels, samples.get() + values, 0.0f);
    return S_OK;
}

HRESULT CWaveMem::createForRate(std::int64_t sourceFrames, const WAVEFORMATEX& sourceFormat,
                                std::uint32_t rate) {
    if (rate == sourceFormat.nSamplesPerSec) return Create(sourceFrames, sourceFormat);
    format = sourceFormat;
    samples.reset();
    if (sourceFrames < 0 || sourceFrames > kFrameLimit) return E_OUTOFMEMORY;
    return allocateForRate(sourceFrames, rate);
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
    const Samples old = std::exchange(samples, nullptr);
    const SourceWave source{old.get(), frames, format.nChannels};
    if (const HRESULT result = allocateForRate(frames, newFormat.nSamplesPerSec); FAILED(result))
        return result;
    resample(source, samples.get(), frames, rateRatio);
    writeGuardFrame();
    format.nSamplesPerSec = newFormat.nSamplesPerSec;
    return S_OK;
}

/// Exactly the frames and a silent guard frame.
HRESULT CWaveMem::allocateForRate(std::int64_t sourceFrames, std::uint32_t rate) {
    const int channels = format.nChannels;
    const double ratio = static_cast<double>(rate) / format.nSamplesPerSec;
    const double newFrames = static_cast<double>(sourceFrames) * ratio + 0.5;
    const double mostValues =
        std::max(kResampleLimit, static_cast<double>(sourceFrames * channels) * kMostGrowth);
    frames = 0;
    byteSize = 0;
    if (!(newFrames * channels <= mostValues)) return E_OUTOFMEMORY;

    rateRatio = ratio;
    frames = static_cast<std::int64_t>(newFrames);
    samples = allocate((frames + 1) * channels);
    if (!samples) return E_OUTOFMEMORY;
    byteSize = static_cast<std::uint64_t>((frames + 1) * channels) * sizeof(float);
    std::fill_n(samples.get() + frames * channels, channels, 0.0f);
    return S_OK;
}

HRESULT CWaveMem::PreparePeaks(std::int32_t points) {
    peakPoints = 0;
    peakCapacity = format.nChannels * points * 2;
    // A grain's offset and count are rounded separately, so that the last grain may reach one entry too
    // far.
    peaks = allocateSilence(peakCapacity + format.nChannels * 2);
    if (!peaks) return E_OUTOFMEMORY;
    peakPoints = points;
    return S_OK;
}

HRESULT CWaveMem::BuildPeaks(std::int32_t mode, std::int32_t points) {
    peakPoints = 0;
    if (mode != 0) return S_OK;
    const HRESULT prepared = PreparePeaks(points);
    if (SUCCEEDED(prepared) && samples) fillPeaks(view(), points, peaks.get());
    return prepared;
}

HRESULT CWaveMem::CreateTail(const CWaveMem& source, std::int64_t firstFrame, std::int64_t length,
                             Samples silence) {
    if (length <= 0 || !source.samples) return E_FAIL;
    if (length > kFrameLimit) return E_OUTOFMEMORY;
    format = source.format;
    tailDecay = tailDecayPerFrame(length);
    tailFrames = 2 * length;
    frames = tailFrames;
    samples = silence ? std::move(silence) : allocateSilence(tailValues(format.nChannels, length));
    if (!samples) return E_OUTOFMEMORY;
    renderTail(source.view(), firstFrame, length, static_cast<std::int32_t>(format.nSamplesPerSec),
               samples.get());
    return S_OK;
}

}  // namespace marnoth
