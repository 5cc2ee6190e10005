#include <cstddef>
#include <new>
#include <span>
#include <string>

#include "engine/GrooveSampler.h"
#include "platform/graph/Graph.h"
#include "seam/Limits.h"

namespace marnoth {
namespace {

/// The white keys from middle C, one for each pad.
constexpr std::array<std::int32_t, kPads> kPadKeys{60, 62, 64, 65, 67, 69, 71, 72,
                                                   74, 76, 77, 79, 81, 83, 84, 86};

HRESULT acceptFloat(const WAVEFORMATEX* format) {
    return format->wFormatTag == WAVE_FORMAT_IEEE_FLOAT ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

bool isPlayable(const WAVEFORMATEX& format) {
    return format.wFormatTag == WAVE_FORMAT_IEEE_FLOAT && (format.nChannels == 1 || format.nChannels == 2);
}

WAVEFORMATEX stereoFloat(std::uint32_t sampleRate) {
    WAVEFORMATEX format{};
    format.wFormatTag = WAVE_FORMAT_IEEE_FLOAT;
    format.nChannels = 2;
    format.wBitsPerSample = 32;
    format.nBlockAlign = 2 * 32 / 8;
    format.nSamplesPerSec = sampleRate;
    format.nAvgBytesPerSec = format.nBlockAlign * sampleRate;
    return format;
}

/// What every pad has before anybody sets it up.
void setPadDefaults(CGrooveTrack& track) {
    const TrackSettings defaults;
    track.midiChannel = defaults.midiChannel;
    track.output = defaults.output;
    track.rootNote = defaults.rootNote;
    track.SetTail(defaults.tailOn);
    track.followKey = defaults.followKey;
    track.oneShot = defaults.oneShot;
}

}  // namespace

CGrooveSampler::CGrooveSampler(CPziSynthContext* synthContext) : renderer_(*synthContext) {
    setContext(synthContext);
    resetKeyMap(bank_.change());
}

CGrooveSampler::~CGrooveSampler() {
    // Undo goes before the pads, and those before the files that they share their samples with.
    const CAutoLock lock(*this);
    // Nothing is heard of it any more, and its context may be half gone.
    renderer_.setSteady(false);
    ResetVoices();
    undo_.reset();
}

void CGrooveSampler::resetKeyMap(Model& model) {
    model.keys.RemoveAll();
    for (CGrooveTrack& pad : model.pads) setPadDefaults(pad);
    for (std::int32_t pad = 0; pad < kPads; ++pad) {
        const std::int32_t key = kPadKeys[static_cast<std::size_t>(pad)];
        model.keys.AddOrReplace({pad, key, key, key, 0, kHighestVelocity});
    }
}

HRESULT CGrooveSampler::RegisterOutputs() {
    renderer_.pins().mix = context().GetPinId(0);
    for (std::int32_t pad = 0; pad < kPads; ++pad) RegisterChannelPin(pad);
    return S_OK;
}

HRESULT CGrooveSampler::RegisterChannelPin(std::int32_t pad) {
    const CAutoLock lock(*this);
    if (pad < 0 || pad >= kPads) return E_INVALIDARG;
    std::uint32_t& id = renderer_.pins().channels[static_cast<std::size_t>(pad)];
    if (id != 0) return S_FALSE;
    const std::string name = "Chan " + std::to_string(pad + 1);
    context().AddOutputPin(name.c_str(), &id);
    return S_OK;
}

HRESULT CGrooveSampler::CheckInputFormat(const WAVEFORMATEX* format) {
    return acceptFloat(format);
}

HRESULT CGrooveSampler::CheckOutputFormat(const WAVEFORMATEX* format) {
    return acceptFloat(format);
}

HRESULT CGrooveSampler::CheckFormatPair(const WAVEFORMATEX* input, const WAVEFORMATEX* output) {
    return acceptFloat(input) == S_OK ? acceptFloat(output) : VFW_E_TYPE_NOT_ACCEPTED;
}

HRESULT CGrooveSampler::ProposeOutputFormat(WAVEFORMATEX*) {
    return S_OK;
}

std::int32_t CGrooveSampler::CheckFormat() {
    const bool usable = isPlayable(inputFormat);
    if (!usable) inputFormat = stereoFloat(static_cast<std::uint32_t>(context().GetSampleRate()));
    renderer_.setRate(inputFormat.nSamplesPerSec);
    return usable ? 0 : 1;
}

HRESULT CGrooveSampler::ProcessBlock(std::int64_t position, PinBuffer* input, PinBuffer* pins,
                                     std::int32_t pinCount, std::int64_t, NoteQueue* notes) {
    if (!input) return S_FALSE;
    const std::span<PinBuffer> outputs(pins, pinCount > 0 ? static_cast<std::size_t>(pinCount) : 0);
    renderer_.render(bank_.beginBlock(), {position, *input, outputs, inputFormat, notes});
    bank_.endBlock();
    return S_OK;
}

HRESULT CGrooveSampler::IsIgnoredEvent(const SynthEvent* event) {
    return event->type == SynthEventType::note ? S_OK : S_FALSE;
}

HRESULT CGrooveSampler::CreateVoice(QueuedEvent* event) {
    return renderer_.createVoice(*event);
}

HRESULT CGrooveSampler::ReleaseVoice(QueuedEvent* event, std::int32_t flush) {
    return renderer_.releaseVoice(*event, flush != 0) ? S_OK : S_FALSE;
}

void CGrooveSampler::ResetVoices() {
    const CAutoLock lock(*this);
    renderer_.resetVoices(bank_.present());
}

HRESULT CGrooveSampler::SetSteady(std::uint32_t on) try {
    const CAutoLock lock(*this);
    renderer_.setSteady(on != 0);
    return S_OK;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

HRESULT CGrooveSampler::GetSteady(std::uint32_t* on) {
    if (!on) return E_POINTER;
    const CAutoLock lock(*this);
    *on = renderer_.isSteady() ? 1 : 0;
    return S_OK;
}

HRESULT CGrooveSampler::SetSparse(std::uint32_t on) {
    const CAutoLock lock(*this);
    sparse_ = on != 0;
    return S_OK;
}

HRESULT CGrooveSampler::GetSparse(std::uint32_t* on) {
    if (!on) return E_POINTER;
    const CAutoLock lock(*this);
    *on = sparse_ ? 1 : 0;
    return S_OK;
}

void CGrooveSampler::ClearPhaseAnchor() {
    const CAutoLock lock(*this);
    renderer_.clearPhaseAnchor();
    renderer_.cutFades();
}

void CGrooveSampler::dropLeftOver() {
    {
        const CAutoLock lock(*this);
        if (!bank_.hasLeftOver()) return;
    }
    Model former;
    const CAutoLock lock(*this);
    bank_.takeLeftOver(former);
}

}  // namespace marnoth
