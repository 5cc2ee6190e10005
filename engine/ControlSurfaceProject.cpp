#include "engine/ControlSurface.h"

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
    CAutoLock lock(*this);
    ResetVoices();
    undoRing.clear();
    auditionTrack.ClearGrains();
    for (const auto& pad : pads) {
        pad->ClearGrains();
        pad->looping = pad->synced = pad->mute = pad->solo = 0;
    }
    anySolo = 0;
    for (auto& file : binFiles) file.reset();
    binFiles.RemoveAll();
    ResetKeyMap();
    return S_OK;
}

}  // namespace marnoth
