#include <optional>
#include <utility>

#include "engine/control/Edit.h"

namespace marnoth {
namespace {

constexpr std::int32_t kWhole = -1;  ///< as `grain`: the whole pad or file
constexpr std::int32_t kAll = -1;    ///< as `pad` or `bin` of a stop

bool isGrainOf(const CGrooveTrack& track, std::int32_t grain) {
    return grain >= 0 && grain < track.GetSize();
}

}  // namespace

/// Auditions a grain of a track, if it is one of its: `find(const Model&, CGrooveTrack& audition)` gives the
/// track, null when there is none, and may set the audition up.
template <class Find>
HRESULT CGrooveSampler::auditionGrain(std::int32_t grain, Find find) {
    struct Draft {
        CGrooveTrack audition;
        std::optional<CGrooveTrack> from;
    };
    return edit(
        [&](const Model& now) {
            Draft draft{now.audition, std::nullopt};
            const CGrooveTrack* const from = find(now, draft.audition);
            if (from && auditionEnabled_ && isGrainOf(*from, grain)) draft.from = *from;
            return draft;
        },
        [&](Draft& draft) {
            if (!draft.from) return S_OK;
            draft.audition.PlayAlone(draft.from->GetAt(grain));
            draft.audition.followKey = draft.from->followKey;
            return S_OK;
        },
        [&](Model& model, Draft& draft) {
            std::swap(model.audition, draft.audition);
            if (draft.from) renderer_.startAudition();
        },
        &PadBank::changeUnsaved);
}

HRESULT CGrooveSampler::AuditionPad(std::int32_t pad, std::int32_t grain) {
    if (!isPad(pad)) return E_INVALIDARG;
    const auto find = [pad](const Model& now, CGrooveTrack& audition) {
        audition.output = padOf(now, pad).output;
        return &padOf(now, pad);
    };
    if (grain != kWhole) return auditionGrain(grain, find);
    CAutoLock lock(*this);
    Model& model = bank_.changeUnsaved();
    find(model, model.audition);
    renderer_.startPad(pad);
    return S_OK;
}

HRESULT CGrooveSampler::StopPad(std::int32_t pad) {
    CAutoLock lock(*this);
    if (pad == kAll) {
        renderer_.stopAllPads();
        return S_OK;
    }
    if (!isPad(pad)) return E_INVALIDARG;
    if (!padOf(bank_.present(), pad).oneShot) renderer_.stopPad(pad);
    return S_OK;
}

HRESULT CGrooveSampler::AuditionBinFile(std::int32_t bin, std::int32_t grain) {
    if (bin < 0 || bin >= kBinFiles) return E_INVALIDARG;
    if (grain == kWhole) {
        CAutoLock lock(*this);
        renderer_.startBinFile(bin);
        return S_OK;
    }
    return auditionGrain(grain, [bin](const Model& now, CGrooveTrack&) {
        return now.bin.has(bin) ? &now.bin[bin].track : nullptr;
    });
}

HRESULT CGrooveSampler::StopBinAudition(std::int32_t bin) {
    if (bin < kAll || bin >= kBinFiles) return E_INVALIDARG;
    CAutoLock lock(*this);
    if (bin == kAll) {
        renderer_.stopAllBinFiles(bank_.present());
    } else {
        renderer_.stopBinFile(bank_.present(), bin);
    }
    return S_OK;
}

HRESULT CGrooveSampler::GetPadPlaying(std::int32_t pad, std::uint32_t* value) {
    return readPad(pad, value, [&](const CGrooveTrack&) { return renderer_.padSounded(pad); });
}

HRESULT CGrooveSampler::GetBinPlaying(std::int32_t bin, std::uint32_t* value) {
    if (!value) return E_POINTER;
    if (bin < 0 || bin >= kBinFiles) return E_INVALIDARG;
    CAutoLock lock(*this);
    *value = renderer_.binFilePlays(bin);
    return S_OK;
}

}  // namespace marnoth
