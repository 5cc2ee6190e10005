#include <new>
#include <string>

#include "engine/GrooveSampler.h"
#include "platform/graph/Graph.h"
#include "platform/system/Overflow.h"
#include "seam/Limits.h"

namespace marnoth {
namespace {

constexpr std::uint32_t kFadeOutMilliseconds = 20;

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
    track.midiChannel = -1;
    track.output = 0;
    track.rootNote = -1;
    track.SetTail(0);
    track.followKey = 0;
    track.oneShot = 1;
}

}  // namespace

CGrooveSampler::CGrooveSampler(CPziSynthContext* synthContext)
    : playList(kPads),
      binFiles(kBinFiles),
      auditionTrack(synthContext),
      streamEvents(kStreamEvents),
      scratch(std::make_unique<float[]>(kScratchValues)) {
    setContext(synthContext);
    for (auto& pad : pads) pad = std::make_unique<CGrooveTrack>(synthContext);
    ResetKeyMap();
}

CGrooveSampler::~CGrooveSampler() {
    const CAutoLock lock(*this);
    ResetVoices();
    undoRing.clear();
    auditionTrack.ClearGrains();
    for (auto& pad : pads) pad.reset();
    for (auto& file : binFiles) file.reset();
    binFiles.RemoveAll();
}

void CGrooveSampler::ResetKeyMap() {
    keyMap.RemoveAll();
    for (auto& pad : pads) setPadDefaults(*pad);
    for (std::int32_t pad = 0; pad < kPads; ++pad) {
        const std::int32_t key = kPadKeys[pad];
        keyMap.AddOrReplace({pad, pads[pad].get(), key, key, key, 0, kHighestVelocity});
    }
}

HRESULT CGrooveSampler::RegisterOutputs() {
    mixPinId = context().GetPinId(0);
    for (std::int32_t pad = 0; pad < kPads; ++pad) RegisterChannelPin(pad);
    return S_OK;
}

HRESULT CGrooveSampler::RegisterChannelPin(std::int32_t pad) {
    const CAutoLock lock(*this);
    if (pad < 0 || pad >= kPads) return E_INVALIDARG;
    if (padPinIds[pad] != 0) return S_FALSE;
    const std::string name = "Chan " + std::to_string(pad + 1);
    context().AddOutputPin(name.c_str(), &padPinIds[pad]);
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
    setFadeLengths(inputFormat.nSamplesPerSec);
    return usable ? 0 : 1;
}

void CGrooveSampler::setFadeLengths(std::uint32_t sampleRate) {
    fadeInFrames = sampleRate / 1000;
    fadeOutFrames = std::int64_t{sampleRate} * kFadeOutMilliseconds / 1000;
}

HRESULT CGrooveSampler::IsIgnoredEvent(const SynthEvent* event) {
    return event->type == SynthEventType::note ? S_OK : S_FALSE;
}

HRESULT CGrooveSampler::CreateVoice(QueuedEvent* event) {
    event->voice = new (std::nothrow) VoiceState;
    if (!event->voice) return E_OUTOFMEMORY;
    VoiceState& voice = *event->voice;
    voice.startPending = 1;
    // A note never reports its end: it goes when its lanes have run out.
    voice.finished = 1;
    const std::int64_t start = std::int64_t{event->event.time} * 65536;
    for (VoiceLane* lane : {&voice.gate, &voice.shot}) {
        lane->start = lane->position = lane->from = start;
        lane->openEnd();
    }
    if (event->event.duration != kDurationOpen) {
        voice.gate.length = std::int64_t{event->event.duration} * 65536;
        voice.gate.end = start + voice.gate.length;
    }
    return S_OK;
}

HRESULT CGrooveSampler::ReleaseVoice(QueuedEvent* event, std::int32_t flush) {
    if (!event->voice) return S_OK;
    const VoiceState& voice = *event->voice;
    const bool plays = voice.gate.position < voice.gate.end || voice.shot.position < voice.shot.end;
    if (!flush && plays) return S_FALSE;
    for (PadGate& gate : padGates) {
        if (gate.owner == event->voice) gate.owner = nullptr;
    }
    std::unique_ptr<VoiceState>(event->voice).reset();
    event->voice = nullptr;
    return S_OK;
}

void CGrooveSampler::ResetVoices() {
    const CAutoLock lock(*this);
    auditionVoice = {};
    binVoices = {};
    padVoices = {};
    padAuditionSounded = {};
    padNoteSounded = {};
    padSounded = {};
    padGates = {};
    blockStart = -1;
    runningPosition = -1;
}

void CGrooveSampler::ClearPhaseAnchor() {
    const CAutoLock lock(*this);
    phaseAnchor = 0;
}

}  // namespace marnoth
