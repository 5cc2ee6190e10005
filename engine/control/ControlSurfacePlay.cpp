#include "engine/control/ControlSurface.h"
#include "seam/Limits.h"

namespace marnoth {
namespace {

constexpr std::int32_t kWhole = -1;  ///< as `grain`: the whole pad or file
constexpr std::int32_t kAll = -1;    ///< as `pad` or `bin` of a stop

bool isGrainOf(const CGrooveTrack& track, std::int32_t grain) {
    return grain >= 0 && grain < track.GetSize();
}

void requestStart(VoiceState& voice) {
    voice.startPending = voice.fromPage = 1;
    voice.stopRequest = voice.releasing = voice.finished = 0;
}

/// An audition plays on past the length of its track.
void requestAudition(VoiceState& voice) {
    requestStart(voice);
    voice.ignoreLength = 1;
    voice.gate.position = voice.gate.start = voice.gate.end = voice.gate.length = 0;
}

}  // namespace

HRESULT CGrooveSampler::AuditionPad(std::int32_t pad, std::int32_t grain) {
    CAutoLock lock(*this);
    const CGrooveTrack* const track = padAt(pad);
    if (!track) return E_INVALIDARG;
    auditionTrack.output = track->output;
    if (grain == kWhole) {
        VoiceState& voice = padVoices[static_cast<std::size_t>(pad)];
        requestStart(voice);
        voice.ignoreLength = 0;
    } else {
        auditionGrain(*track, grain);
    }
    return S_OK;
}

void CGrooveSampler::auditionGrain(const CGrooveTrack& track, std::int32_t grain) {
    if (!auditionEnabled || !isGrainOf(track, grain)) return;
    auditionTrack.PlayAlone(track.GetAt(grain));
    auditionTrack.followKey = track.followKey;
    requestAudition(auditionVoice);
}

HRESULT CGrooveSampler::StopPad(std::int32_t pad) {
    CAutoLock lock(*this);
    if (pad == kAll) {
        for (VoiceState& voice : padVoices) voice.stopRequest = 1;
        stopAll = 1;
        return S_OK;
    }
    const CGrooveTrack* const track = padAt(pad);
    if (!track) return E_INVALIDARG;
    if (!track->oneShot) padVoices[static_cast<std::size_t>(pad)].stopRequest = 1;
    return S_OK;
}

HRESULT CGrooveSampler::AuditionBinFile(std::int32_t bin, std::int32_t grain) {
    if (bin < 0 || bin >= kBinFiles) return E_INVALIDARG;
    CAutoLock lock(*this);
    const CGrooveTrack* const file = binFileAt(bin);
    if (grain == kWhole) {
        requestAudition(binVoices[static_cast<std::size_t>(bin)]);
    } else if (file) {
        auditionGrain(*file, grain);
    }
    return S_OK;
}

HRESULT CGrooveSampler::StopBinAudition(std::int32_t bin) {
    if (bin < kAll || bin >= kBinFiles) return E_INVALIDARG;
    CAutoLock lock(*this);
    if (bin == kAll) {
        binVoices.fill(VoiceState{});
    } else {
        binVoices[static_cast<std::size_t>(bin)] = VoiceState{};
    }
    return S_OK;
}

HRESULT CGrooveSampler::GetPadPlaying(std::int32_t pad, std::uint32_t* value) {
    return getFromPad(pad, value,
                      [&](const CGrooveTrack&) { return padSounded[static_cast<std::size_t>(pad)]; });
}

HRESULT CGrooveSampler::GetBinPlaying(std::int32_t bin, std::uint32_t* value) {
    if (!value) return E_POINTER;
    if (bin < 0 || bin >= kBinFiles) return E_INVALIDARG;
    CAutoLock lock(*this);
    const VoiceState& voice = binVoices[static_cast<std::size_t>(bin)];
    *value = voice.startPending || voice.gate.length != 0;
    return S_OK;
}

}  // namespace marnoth
