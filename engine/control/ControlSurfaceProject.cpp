#include <algorithm>
#include <utility>

#include "engine/control/ControlSurface.h"
#include "engine/persist/FormerProject.h"
#include "seam/Limits.h"

namespace marnoth {

HRESULT CGrooveSampler::PushUndoState() {
    CAutoLock lock(*this);
    undoRing.push(pads);
    return S_OK;
}

HRESULT CGrooveSampler::Undo() {
    CAutoLock lock(*this);
    if (!undoRing.undo(pads)) return S_FALSE;
    adoptSwappedPads();
    return S_OK;
}

HRESULT CGrooveSampler::Redo() {
    CAutoLock lock(*this);
    if (!undoRing.redo(pads)) return S_FALSE;
    adoptSwappedPads();
    return S_OK;
}

void CGrooveSampler::adoptSwappedPads() {
    for (std::int32_t pad = 0; pad < kPads; ++pad) keyMap.setTrack(pad, padAt(pad));
    recomputeAnySolo();
}

HRESULT CGrooveSampler::ClearProject() {
    FormerProject former;
    CAutoLock lock(*this);
    removeProjectAndKeys(former);
    return S_OK;
}

HRESULT CGrooveSampler::GetLoadFault(LoadFault* fault) {
    if (!fault) return E_POINTER;
    *fault = lastFault.get();
    return S_OK;
}

void CGrooveSampler::removeProject(FormerProject& former) {
    ResetVoices();
    std::swap(undoRing, former.undoRing);
    former.auditioned = auditionTrack.TakeGrains();
    for (std::size_t pad = 0; pad < pads.size(); ++pad) {
        CGrooveTrack& track = *pads[pad];
        former.grains[pad] = track.TakeGrains();
        track.looping = track.synced = track.mute = track.solo = 0;
    }
    std::move(binFiles.begin(), binFiles.end(), former.files.begin());
    binFiles.RemoveAll();
    keyMap.RemoveAll();
}

void CGrooveSampler::removeProjectAndKeys(FormerProject& former) {
    removeProject(former);
    anySolo = 0;
    ResetKeyMap();
}

}  // namespace marnoth
