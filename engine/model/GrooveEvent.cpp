#include "engine/model/GrooveEvent.h"

#include <algorithm>
#include <utility>

#include "platform/system/Overflow.h"

namespace marnoth {
namespace {

void writeTime(std::int64_t& ticks16, std::int64_t& samples, std::int64_t value, std::uint32_t kind) {
    if (value < 0) return;
    if (kind == kTicks16) ticks16 = value;
    if (kind == kSamples) samples = value;
}

}  // namespace

void CGrooveEvent::SetStart(std::int64_t value, std::uint32_t kind) {
    writeTime(startTicks, startSamples, value, kind);
}

void CGrooveEvent::SetLength(std::int64_t value, std::uint32_t kind) {
    writeTime(lengthTicks, lengthSamples, value, kind);
}

std::int64_t CGrooveEvent::GetEnd(std::uint32_t kind, std::uint32_t useTail) const {
    return plus(GetStart(kind), GetLength(kind, useTail));
}

void CGrooveEvent::AttachSample(RefPtr<CWaveMem> wave, std::int64_t offset) {
    sample = std::move(wave);
    sampleOffset = std::min(offset, sample->frames);
    format = sample->format;
}

HRESULT CGrooveEvent::BuildTail(Samples silence) {
    if (!sample) return E_FAIL;
    if (lengthSamples < 1) return S_OK;
    RefPtr<CWaveMem> tail = CWaveMem::make();
    const HRESULT result = tail->CreateTail(*sample, sampleOffset, lengthSamples, std::move(silence));
    if (result != S_OK) return result;
    tailLengthSamples = tail->frames;
    tailWave = std::move(tail);
    return S_OK;
}

StretchSource CGrooveEvent::source() const {
    StretchSource source;
    if (playsTail()) {
        source.wave = tailWave->view();
        source.length = tailLengthSamples;
    } else if (sample) {
        source.wave = sample->view();
        source.first = sampleOffset;
        source.length = lengthSamples;
    }
    source.sampleRate = static_cast<std::int32_t>(format.nSamplesPerSec);
    source.sampleBits = format.wBitsPerSample;
    return source;
}

HRESULT CGrooveEvent::Render(std::int64_t pos, std::int64_t destFrame, std::int32_t frames,
                             std::int64_t targetFrames, float* dest, const WAVEFORMATEX* destFormat,
                             float padVolume, float padPan, Ramps ramps) const {
    const std::int32_t channels = destFormat->nChannels;
    renderStretched(source(), {pos, frames, targetFrames}, {dest + destFrame * channels, channels},
                    grainGain(padVolume, padPan, volume, pan), ramps);
    return S_OK;
}

HRESULT CGrooveEvent::RenderShifted(std::int64_t pos, std::int64_t destFrame, std::int32_t frames,
                                    std::int64_t targetFrames, float* dest, const WAVEFORMATEX* destFormat,
                                    float padVolume, float padPan, std::int32_t semitones,
                                    Ramps ramps) const {
    const std::int32_t channels = destFormat->nChannels;
    renderShifted(source(), {pos, frames, targetFrames}, {dest + destFrame * channels, channels},
                  grainGain(padVolume, padPan, volume, pan), semitones, pitchRatio, ramps);
    return S_OK;
}

}  // namespace marnoth
