#include <utility>

#include "engine/control/ControlSurface.h"

namespace marnoth {

HRESULT CGrooveSampler::GetKeyMapEntry(KeyMapRecord* entry) {
    if (!entry) return E_POINTER;
    CAutoLock lock(*this);
    if (!padAt(entry->pad)) return E_INVALIDARG;
    if (const TrackKeyInfoImp* found = keyMap.find(entry->pad)) {
        *entry = {found->pad,     found->lowKey,      found->highKey,
                  found->rootKey, found->lowVelocity, found->highVelocity};
    }
    return S_OK;
}

HRESULT CGrooveSampler::SetKeyMapEntry(const KeyMapRecord* entry) {
    if (!entry) return E_POINTER;
    CAutoLock lock(*this);
    CGrooveTrack* const track = padAt(entry->pad);
    if (!track) return E_INVALIDARG;
    keyMap.AddOrReplace({entry->pad, track, entry->lowKey, entry->highKey, entry->rootKey, entry->lowVelocity,
                         entry->highVelocity});
    return S_OK;
}

HRESULT CGrooveSampler::GetAuditionEnabled(std::uint32_t* value) {
    if (!value) return E_POINTER;
    CAutoLock lock(*this);
    *value = auditionEnabled;
    return S_OK;
}

HRESULT CGrooveSampler::SetAuditionEnabled(std::uint32_t value) {
    CAutoLock lock(*this);
    auditionEnabled = value;
    return S_OK;
}

HRESULT CGrooveSampler::GetRefreshRequest(std::uint32_t* value) {
    if (!value) return E_POINTER;
    CAutoLock lock(*this);
    *value = std::exchange(refreshRequest, 0);
    return S_OK;
}

HRESULT CGrooveSampler::SetRefreshRequest(std::uint32_t value) {
    CAutoLock lock(*this);
    refreshRequest = value;
    return S_OK;
}

}  // namespace marnoth
