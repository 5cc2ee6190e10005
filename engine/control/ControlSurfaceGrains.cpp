#include <cmath>
#include <limits>
#include <utility>

#include "engine/control/ControlSurface.h"

namespace marnoth {
namespace {

std::unique_ptr<CGrooveEvent> copyOf(const CGrooveEvent& grain) {
    return std::make_unique<CGrooveEvent>(grain);
}

/// Semitones pass the interface as `float`, which rounds what is far beyond any music.
std::int32_t throughFloat(std::int32_t semitones) {
    constexpr float kBeyond = 2147483648.0f;
    const auto value = static_cast<float>(semitones);
    return value < kBeyond ? static_cast<std::int32_t>(value) : std::numeric_limits<std::int32_t>::max();
}

void takeSettingsOf(CGrooveTrack& pad, const CGrooveTrack& from) {
    pad.TakeLengthsFrom(from);
    pad.looping = from.looping;
    pad.synced = from.synced;
    pad.followKey = from.followKey;
    pad.SetRootNote(from.rootNote);
}

void removeGrain(CGrooveTrack& pad, std::int32_t grain, std::uint32_t markOnly) {
    if (markOnly) {
        pad.MarkGrainDeleted(grain);
    } else {
        pad.RemoveGrain(grain);
    }
}

}  // namespace

HRESULT CGrooveSampler::CommitGrainEdits() {
    CAutoLock lock(*this);
    for (const auto& pad : pads) pad->PurgeAndSort();
    return S_OK;
}

HRESULT CGrooveSampler::DeleteGrain(std::int32_t pad, std::int32_t grain, std::uint32_t markOnly) {
    CAutoLock lock(*this);
    CGrooveTrack* const track = padAt(pad);
    if (!track || grain < 0 || grain >= track->GetSize()) return E_INVALIDARG;
    removeGrain(*track, grain, markOnly);
    return S_OK;
}

HRESULT CGrooveSampler::ReplaceGrain(std::int32_t pad, std::int32_t grain, std::int32_t bin,
                                     std::int32_t binGrain) {
    CAutoLock lock(*this);
    CGrooveTrack* const track = padAt(pad);
    const CGrooveTrack* const file = binFileAt(bin);
    if (!track || !file) return E_INVALIDARG;
    const std::int64_t start = track->GetAt(grain).startTicks;
    auto copy = copyOf(file->GetAt(binGrain));
    track->RemoveGrain(grain);
    track->InsertGrainSorted(std::move(copy), start, true);
    return S_OK;
}

HRESULT CGrooveSampler::AddGrain(std::int32_t bin, std::int32_t binGrain, std::int32_t pad,
                                 std::int64_t time) {
    CAutoLock lock(*this);
    CGrooveTrack* const track = padAt(pad);
    const CGrooveTrack* const file = binFileAt(bin);
    if (!track || !file) return E_INVALIDARG;
    auto copy = copyOf(file->GetAt(binGrain));
    if (track->GetSize() == 0) {
        track->looping = track->synced = 1;
        track->RecomputeTempo();
    }
    track->InsertGrainSorted(std::move(copy), time, true);
    return S_OK;
}

HRESULT CGrooveSampler::GetGrainSource(std::int32_t pad, std::int32_t grain, std::int32_t* bin,
                                       std::int32_t* binGrain) {
    if (!bin || !binGrain) return E_POINTER;
    return changeGrain(pad, grain, [=](const CGrooveEvent& event) {
        *bin = event.binFile;
        *binGrain = event.binGrain;
    });
}

HRESULT CGrooveSampler::MoveGrain(std::int32_t pad, std::int32_t grain, std::int32_t toPad, std::int64_t time,
                                  std::int32_t* newIndex, std::uint32_t markOnly) {
    return transferGrain(pad, grain, toPad, time, newIndex,
                         [=](CGrooveTrack& source) { removeGrain(source, grain, markOnly); });
}

HRESULT CGrooveSampler::CopyGrain(std::int32_t pad, std::int32_t grain, std::int32_t toPad, std::int64_t time,
                                  std::int32_t* newIndex) {
    return transferGrain(pad, grain, toPad, time, newIndex, [](CGrooveTrack&) {});
}

template <class Leave>
HRESULT CGrooveSampler::transferGrain(std::int32_t pad, std::int32_t grain, std::int32_t toPad,
                                      std::int64_t time, std::int32_t* newIndex, Leave leave) {
    if (!newIndex) return E_POINTER;
    CAutoLock lock(*this);
    CGrooveTrack* const source = padAt(pad);
    CGrooveTrack* const target = padAt(toPad);
    if (!source || !target) return E_INVALIDARG;
    auto copy = copyOf(source->GetAt(grain));
    leave(*source);
    if (target->GetSize() == 0) takeSettingsOf(*target, *source);
    const std::int64_t start = time < 0 ? copy->startTicks : time;
    target->AppendGrain(std::move(copy), start, target != source || start >= target->lengthTicks);
    // The place isn't known before the edit is committed.
    *newIndex = -1;
    return S_OK;
}

HRESULT CGrooveSampler::GetGrainTranspose(std::int32_t pad, std::int32_t grain, std::int32_t* semitones) {
    return getFromGrain(pad, grain, semitones,
                        [](const CGrooveEvent& event) { return throughFloat(event.transpose); });
}

HRESULT CGrooveSampler::SetGrainTranspose(std::int32_t pad, std::int32_t grain, std::int32_t semitones) {
    return changeGrain(pad, grain, [=](CGrooveEvent& event) { event.transpose = throughFloat(semitones); });
}

HRESULT CGrooveSampler::GetGrainVolume(std::int32_t pad, std::int32_t grain, float* value) {
    return getFromGrain(pad, grain, value,
                        [](const CGrooveEvent& event) { return static_cast<float>(event.volume); });
}

HRESULT CGrooveSampler::SetGrainVolume(std::int32_t pad, std::int32_t grain, float value) {
    return changeGrain(pad, grain, [=](CGrooveEvent& event) {
        if (std::isfinite(value)) event.volume = value;
    });
}

HRESULT CGrooveSampler::GetGrainPan(std::int32_t pad, std::int32_t grain, float* value) {
    return getFromGrain(pad, grain, value,
                        [](const CGrooveEvent& event) { return static_cast<float>(event.pan); });
}

HRESULT CGrooveSampler::SetGrainPan(std::int32_t pad, std::int32_t grain, float value) {
    return changeGrain(pad, grain, [=](CGrooveEvent& event) {
        if (std::isfinite(value)) event.pan = value;
    });
}

}  // namespace marnoth
