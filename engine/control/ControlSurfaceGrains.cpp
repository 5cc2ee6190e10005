#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "engine/control/Edit.h"

namespace marnoth {
namespace {

/// Semitones pass the interface as `float`, which rounds what is far beyond any music.
std::int32_t throughFloat(std::int32_t semitones) {
    constexpr float kBeyond = 2147483648.0f;
    const auto value = static_cast<float>(semitones);
    return value < kBeyond ? static_cast<std::int32_t>(value) : std::numeric_limits<std::int32_t>::max();
}

void removeGrain(CGrooveTrack& pad, std::int32_t grain, std::uint32_t markOnly) {
    if (markOnly) {
        pad.MarkGrainDeleted(grain);
    } else {
        pad.RemoveGrain(grain);
    }
}

HRESULT layOn(CGrooveTrack& pad, const CGrooveTrack& file, std::int32_t sampleRate) {
    pad.LayOn(file, sampleRate);
    return S_OK;
}

}  // namespace

HRESULT CGrooveSampler::CommitGrainEdits() {
    return edit([](const Model& now) { return now.pads; },
                [](Pads& pads) {
                    for (CGrooveTrack& pad : pads) pad.PurgeAndSort();
                    return S_OK;
                },
                [](Model& model, Pads& next) { std::swap(model.pads, next); });
}

HRESULT CGrooveSampler::DeleteGrain(std::int32_t pad, std::int32_t grain, std::uint32_t markOnly) {
    return editPad(pad, [=](CGrooveTrack& track) {
        if (grain < 0 || grain >= track.GetSize()) return E_INVALIDARG;
        removeGrain(track, grain, markOnly);
        return S_OK;
    });
}

/// An edit of a pad that takes something from a file: `build(pad, file, sampleRate)`. `noFile` answers a bad
/// file.
template <class Build>
HRESULT CGrooveSampler::editPadFromBin(std::int32_t pad, std::int32_t bin, Build build, HRESULT noFile) {
    struct Draft {
        CGrooveTrack pad;
        std::optional<CGrooveTrack> file;
        std::int32_t sampleRate;
    };
    if (!isPad(pad)) return E_INVALIDARG;
    return edit(
        [&](const Model& now) {
            Draft draft{padOf(now, pad), std::nullopt, context().GetSampleRate()};
            if (now.bin.has(bin)) draft.file = now.bin[bin].track;
            return draft;
        },
        [&](Draft& draft) { return draft.file ? build(draft.pad, *draft.file, draft.sampleRate) : noFile; },
        [this, pad](Model& model, Draft& draft) {
            renderer_.replace(model, [&] { std::swap(padOf(model, pad), draft.pad); });
        });
}

HRESULT CGrooveSampler::ReplaceGrain(std::int32_t pad, std::int32_t grain, std::int32_t bin,
                                     std::int32_t binGrain) {
    return editPadFromBin(pad, bin, [=](CGrooveTrack& track, const CGrooveTrack& file, std::int32_t rate) {
        const std::int64_t start = track.GetAt(grain).startTicks;
        const CGrooveEvent& copy = file.GetAt(binGrain);
        track.RemoveGrain(grain);
        track.InsertGrainSorted(copy, start, true, rate);
        return S_OK;
    });
}

HRESULT CGrooveSampler::AddGrain(std::int32_t bin, std::int32_t binGrain, std::int32_t pad,
                                 std::int64_t time) {
    return editPadFromBin(pad, bin, [=](CGrooveTrack& track, const CGrooveTrack& file, std::int32_t rate) {
        const CGrooveEvent& copy = file.GetAt(binGrain);
        if (track.GetSize() == 0) {
            track.looping = track.synced = 1;
            track.RecomputeTempo(rate);
        }
        track.InsertGrainSorted(copy, time, true, rate);
        return S_OK;
    });
}

HRESULT CGrooveSampler::LoadPadFromBin(std::int32_t pad, std::int32_t bin) {
    return editPadFromBin(pad, bin, layOn);
}

HRESULT CGrooveSampler::LoadFileToPad(std::int32_t pad, const char* title, const char* path,
                                      std::int32_t* bin, std::uint32_t* status) {
    if (!title || !path || !bin || !status) return E_POINTER;
    if (!isPad(pad)) return E_INVALIDARG;
    const HRESULT loaded = LoadFileToBin(title, path, bin, status);
    if (FAILED(loaded) || *status == kBinFull) return loaded;
    const HRESULT laid = editPadFromBin(pad, *bin, layOn, E_FAIL);
    return FAILED(laid) ? laid : loaded;
}

HRESULT CGrooveSampler::GetGrainSource(std::int32_t pad, std::int32_t grain, std::int32_t* bin,
                                       std::int32_t* binGrain) {
    if (!bin || !binGrain) return E_POINTER;
    CAutoLock lock(*this);
    if (!isPad(pad)) return E_INVALIDARG;
    const CGrooveEvent& event = padOf(bank_.present(), pad).GetAt(grain);
    *bin = event.binFile;
    *binGrain = event.binGrain;
    return S_OK;
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

/// A copy of a grain goes to `toPad`; `leave` says what becomes of the pad that it comes from.
template <class Leave>
HRESULT CGrooveSampler::transferGrain(std::int32_t pad, std::int32_t grain, std::int32_t toPad,
                                      std::int64_t time, std::int32_t* newIndex, Leave leave) {
    struct Draft {
        CGrooveTrack source;
        CGrooveTrack target;
        std::int32_t sampleRate;
    };
    if (!newIndex) return E_POINTER;
    if (!isPad(pad) || !isPad(toPad)) return E_INVALIDARG;
    const bool within = pad == toPad;
    const HRESULT result = edit(
        [&](const Model& now) {
            return Draft{padOf(now, pad), padOf(now, toPad), context().GetSampleRate()};
        },
        [&](Draft& draft) {
            const CGrooveEvent copy = draft.source.GetAt(grain);
            leave(draft.source);
            CGrooveTrack& target = within ? draft.source : draft.target;
            if (target.GetSize() == 0) target.TakeOver(draft.source, draft.sampleRate);
            const std::int64_t start = time < 0 ? copy.startTicks : time;
            target.AppendGrain(copy, start, !within || start >= target.lengthTicks, draft.sampleRate);
            return S_OK;
        },
        [&](Model& model, Draft& draft) {
            std::swap(padOf(model, pad), draft.source);
            if (!within) std::swap(padOf(model, toPad), draft.target);
        });
    // The place isn't known before the edit is committed.
    if (SUCCEEDED(result)) *newIndex = -1;
    return result;
}

HRESULT CGrooveSampler::GetGrainTranspose(std::int32_t pad, std::int32_t grain, std::int32_t* semitones) {
    return readPad(pad, semitones,
                   [=](const CGrooveTrack& track) { return throughFloat(track.GetAt(grain).transpose); });
}

HRESULT CGrooveSampler::SetGrainTranspose(std::int32_t pad, std::int32_t grain, std::int32_t semitones) {
    return editGrain(pad, grain, [=](CGrooveEvent& event) { event.transpose = throughFloat(semitones); });
}

HRESULT CGrooveSampler::GetGrainVolume(std::int32_t pad, std::int32_t grain, float* value) {
    return readPad(pad, value,
                   [=](const CGrooveTrack& track) { return static_cast<float>(track.GetAt(grain).volume); });
}

HRESULT CGrooveSampler::SetGrainVolume(std::int32_t pad, std::int32_t grain, float value) {
    return editGrain(pad, grain, [=](CGrooveEvent& event) {
        if (std::isfinite(value)) event.volume = value;
    });
}

HRESULT CGrooveSampler::GetGrainPan(std::int32_t pad, std::int32_t grain, float* value) {
    return readPad(pad, value,
                   [=](const CGrooveTrack& track) { return static_cast<float>(track.GetAt(grain).pan); });
}

HRESULT CGrooveSampler::SetGrainPan(std::int32_t pad, std::int32_t grain, float value) {
    return editGrain(pad, grain, [=](CGrooveEvent& event) {
        if (std::isfinite(value)) event.pan = value;
    });
}

}  // namespace marnoth
