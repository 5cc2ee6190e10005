#include <algorithm>
#include <cmath>

#include "engine/control/Edit.h"
#include "seam/Limits.h"

namespace marnoth {
namespace {

constexpr float kMaxPadVolume = 2.0f;
/// Seconds that one 16.16 tick lasts at 100 beats per minute.
constexpr double kSecondsPerTick16AtDefaultTempo = 9.5367431640625e-9;

/// `value` between 0 and `most`; what isn't a number leaves `field` as it is.
void writeLevel(float& field, float value, float most) {
    if (!std::isnan(value)) field = std::clamp(value, 0.0f, most);
}

/// The pad or the file of a loop kind and index; null when there is none.
template <class SomeModel>
auto* trackOf(SomeModel& model, std::uint32_t kind, std::uint32_t index) {
    const auto at = static_cast<std::int32_t>(std::min<std::uint32_t>(index, kPads));
    auto* const pad = kind == kPadLoop && isPad(at) ? &padOf(model, at) : nullptr;
    return kind == kBinLoop && model.bin.has(at) ? &model.bin[at].track : pad;
}

}  // namespace

HRESULT CGrooveSampler::GetPadLooping(std::int32_t pad, std::uint32_t* value) {
    return readPad(pad, value, &CGrooveTrack::looping, S_OK);
}

HRESULT CGrooveSampler::SetPadLooping(std::int32_t pad, std::uint32_t value) {
    return changePad(
        pad, [=](CGrooveTrack& track) { track.looping = value; }, S_OK);
}

HRESULT CGrooveSampler::GetPadSynced(std::int32_t pad, std::uint32_t* value) {
    return readPad(pad, value, &CGrooveTrack::synced, S_OK);
}

HRESULT CGrooveSampler::SetPadSynced(std::int32_t pad, std::uint32_t value) {
    return changePad(
        pad, [=](CGrooveTrack& track) { track.synced = value; }, S_OK);
}

HRESULT CGrooveSampler::GetPadPlayMode(std::int32_t pad, std::uint32_t* value) {
    return readPad(pad, value, &CGrooveTrack::oneShot, S_OK);
}

HRESULT CGrooveSampler::SetPadPlayMode(std::int32_t pad, std::uint32_t value) {
    return changePad(
        pad, [=](CGrooveTrack& track) { track.oneShot = value; }, S_OK);
}

HRESULT CGrooveSampler::GetPadOneShot(std::int32_t pad, std::uint32_t* value) {
    return readPad(pad, value, &CGrooveTrack::oneShot);
}

HRESULT CGrooveSampler::SetPadOneShot(std::int32_t pad, std::uint32_t value) {
    return changePad(pad, [=](CGrooveTrack& track) { track.oneShot = value; });
}

HRESULT CGrooveSampler::GetPadMute(std::int32_t pad, std::uint32_t* value) {
    return readPad(pad, value, &CGrooveTrack::mute);
}

HRESULT CGrooveSampler::SetPadMute(std::int32_t pad, std::uint32_t value) {
    return changeMix(pad, [=](CGrooveTrack& track) { track.mute = value; });
}

HRESULT CGrooveSampler::GetPadSolo(std::int32_t pad, std::uint32_t* value) {
    return readPad(pad, value, &CGrooveTrack::solo);
}

HRESULT CGrooveSampler::SetPadSolo(std::int32_t pad, std::uint32_t value) {
    CAutoLock lock(*this);
    if (!isPad(pad)) return E_INVALIDARG;
    Model& model = bank_.changeMix();
    padOf(model, pad).solo = value;
    model.recomputeAnySolo();
    return S_OK;
}

HRESULT CGrooveSampler::GetPadVolume(std::int32_t pad, float* value) {
    return readPad(pad, value, &CGrooveTrack::volume);
}

HRESULT CGrooveSampler::SetPadVolume(std::int32_t pad, float value) {
    return changeMix(pad, [=](CGrooveTrack& track) { writeLevel(track.volume, value, kMaxPadVolume); });
}

HRESULT CGrooveSampler::GetPadPan(std::int32_t pad, float* value) {
    return readPad(pad, value, &CGrooveTrack::pan);
}

HRESULT CGrooveSampler::SetPadPan(std::int32_t pad, float value) {
    return changeMix(pad, [=](CGrooveTrack& track) { writeLevel(track.pan, value, 1.0f); });
}

HRESULT CGrooveSampler::GetPadTail(std::int32_t pad, std::uint32_t* value) {
    return readPad(pad, value, &CGrooveTrack::tailOn);
}

HRESULT CGrooveSampler::SetPadTail(std::int32_t pad, std::uint32_t value) {
    return editPad(pad, [=](CGrooveTrack& track) {
        track.SetTail(value);
        return S_OK;
    });
}

HRESULT CGrooveSampler::GetPadFollowKey(std::int32_t pad, std::uint32_t* value) {
    return readPad(pad, value, &CGrooveTrack::followKey);
}

HRESULT CGrooveSampler::SetPadFollowKey(std::int32_t pad, std::uint32_t value) {
    return changePad(pad, [=](CGrooveTrack& track) { track.followKey = value; });
}

HRESULT CGrooveSampler::GetPadOutput(std::int32_t pad, std::uint32_t* output) {
    return readPad(pad, output, &CGrooveTrack::output);
}

HRESULT CGrooveSampler::SetPadOutput(std::int32_t pad, std::uint32_t output) {
    if (output > std::uint32_t{kChannelPins}) return E_INVALIDARG;
    return changePad(pad, [=](CGrooveTrack& track) { track.output = output; });
}

HRESULT CGrooveSampler::GetPadRootNote(std::int32_t pad, std::int32_t* note) {
    return readPad(pad, note, &CGrooveTrack::rootNote);
}

HRESULT CGrooveSampler::SetPadRootNote(std::int32_t pad, std::int32_t note) {
    return changePad(pad, [=](CGrooveTrack& track) { track.SetRootNote(note); });
}

HRESULT CGrooveSampler::GetPadChannel(std::int32_t pad, std::int32_t* channel) {
    return readPad(pad, channel, &CGrooveTrack::midiChannel);
}

HRESULT CGrooveSampler::SetPadChannel(std::int32_t pad, std::int32_t channel) {
    return changePad(
        pad, [=](CGrooveTrack& track) { track.midiChannel = std::clamp(channel, -1, kMidiChannels - 1); });
}

HRESULT CGrooveSampler::GetLoopLength(std::uint32_t kind, std::uint32_t index, std::int64_t* ticks16) {
    if (!ticks16) return E_POINTER;
    CAutoLock lock(*this);
    const CGrooveTrack* const track = trackOf(bank_.present(), kind, index);
    if (!track) return E_INVALIDARG;
    *ticks16 = track->lengthTicks;
    return S_OK;
}

HRESULT CGrooveSampler::SetLoopLength(std::uint32_t kind, std::uint32_t index, std::int64_t ticks16) {
    CAutoLock lock(*this);
    if (!trackOf(bank_.present(), kind, index)) return E_INVALIDARG;
    CGrooveTrack& track = *trackOf(bank_.change(), kind, index);
    track.SetLength(ticks16, kTicks16);
    if (kind == kBinLoop || ticks16 < 0) return S_OK;
    const double rate = context().GetSampleRate();
    const auto ticks = static_cast<double>(ticks16);
    track.SetLength(roundHalfUp(track.tempo > 0 ? rate / track.tempo * ticks * kSecondsPerTick16AtOneBpm
                                                : rate * ticks * kSecondsPerTick16AtDefaultTempo),
                    kSamples);
    return S_OK;
}

HRESULT CGrooveSampler::GetGrainCount(std::uint32_t kind, std::uint32_t index, std::int32_t* count) {
    if (!count) return E_POINTER;
    CAutoLock lock(*this);
    const CGrooveTrack* const track = trackOf(bank_.present(), kind, index);
    if (!track) return E_INVALIDARG;
    *count = track->GetSize();
    return S_OK;
}

HRESULT CGrooveSampler::GetPadEndTime(std::int32_t pad, std::int64_t* ticks16) {
    return readPad(pad, ticks16, [](const CGrooveTrack& track) {
        return track.GetSize() == 0 ? 0 : track.GetAt(track.GetSize() - 1).GetEnd(kTicks16, 0);
    });
}

}  // namespace marnoth
