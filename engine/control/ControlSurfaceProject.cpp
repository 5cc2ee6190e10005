#include <utility>

#include "engine/control/Edit.h"
#include "engine/persist/FormerProject.h"

namespace marnoth {

HRESULT CGrooveSampler::PushUndoState() {
    PadsState state;
    const CAutoLock lock(*this);
    state.pads = bank_.present().pads;
    state.phases = renderer_.phases();
    undo_->push(state);
    return S_OK;
}

HRESULT CGrooveSampler::Undo() {
    const CAutoLock lock(*this);
    return changePlaces(undo_->undo());
}

HRESULT CGrooveSampler::Redo() {
    const CAutoLock lock(*this);
    return changePlaces(undo_->redo());
}

HRESULT CGrooveSampler::changePlaces(PadsState* former) {
    if (!former) return S_FALSE;
    Model& model = bank_.change();
    renderer_.replace(model, [&] {
        std::swap(model.pads, former->pads);
        std::swap(renderer_.phases(), former->phases);
        model.recomputeAnySolo();
    });
    return S_OK;
}

HRESULT CGrooveSampler::ClearProject() {
    FormerProject former;
    const WritersTurn turn(*this);
    const CAutoLock lock(*this);
    renderer_.replace(bank_.change(), [&] { removeProjectAndKeys(former); });
    return S_OK;
}

HRESULT CGrooveSampler::GetLoadFault(LoadFault* fault) {
    if (!fault) return E_POINTER;
    *fault = lastFault_.get().fault;
    return S_OK;
}

HRESULT CGrooveSampler::GetLoadDamage(LoadFault* damage) {
    if (!damage) return E_POINTER;
    *damage = lastFault_.get().damage;
    return S_OK;
}

HRESULT CGrooveSampler::SetLenientFiles(std::uint32_t on) {
    const CAutoLock lock(*this);
    lenientFiles_ = on != 0;
    return S_OK;
}

HRESULT CGrooveSampler::GetLenientFiles(std::uint32_t* on) {
    if (!on) return E_POINTER;
    const CAutoLock lock(*this);
    *on = lenientFiles_;
    return S_OK;
}

HRESULT CGrooveSampler::GetChanges(std::uint64_t* count) {
    if (!count) return E_POINTER;
    const CAutoLock lock(*this);
    *count = bank_.changes();
    return S_OK;
}

void CGrooveSampler::removeProject(FormerProject& former) {
    renderer_.forgetVoices();
    if (former.undo) {
        std::swap(undo_, former.undo);
    } else {
        undo_->clear();
    }
    Model& model = bank_.change();
    std::swap(model.bin, former.bin);
    former.audition = model.audition.grains();
    model.audition.ClearGrains();
    for (std::size_t pad = 0; pad < model.pads.size(); ++pad) {
        CGrooveTrack& track = model.pads[pad];
        former.pads[pad] = track.grains();
        track.ClearGrains();
        track.looping = track.synced = track.mute = track.solo = 0;
    }
    model.keys.RemoveAll();
}

void CGrooveSampler::removeProjectAndKeys(FormerProject& former) {
    removeProject(former);
    Model& model = bank_.change();
    model.anySolo = 0;
    resetKeyMap(model);
}

}  // namespace marnoth
