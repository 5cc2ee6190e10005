#include <utility>

#include "engine/control/Edit.h"

namespace marnoth {

HRESULT CGrooveSampler::GetKeyMapEntry(KeyMapRecord* entry) {
    if (!entry) return E_POINTER;
    CAutoLock lock(*this);
    if (!isPad(entry->pad)) return E_INVALIDARG;
    if (const KeyMapRecord* found = bank_.present().keys.find(entry->pad)) *entry = *found;
    return S_OK;
}

HRESULT CGrooveSampler::SetKeyMapEntry(const KeyMapRecord* entry) {
    if (!entry) return E_POINTER;
    CAutoLock lock(*this);
    if (!isPad(entry->pad)) return E_INVALIDARG;
    bank_.change().keys.AddOrReplace(*entry);
    return S_OK;
}

HRESULT CGrooveSampler::GetAuditionEnabled(std::uint32_t* value) {
    if (!value) return E_POINTER;
    CAutoLock lock(*this);
    *value = auditionEnabled_;
    return S_OK;
}

HRESULT CGrooveSampler::SetAuditionEnabled(std::uint32_t value) {
    CAutoLock lock(*this);
    auditionEnabled_ = value;
    bank_.noteChange();
    return S_OK;
}

HRESULT CGrooveSampler::GetRefreshRequest(std::uint32_t* value) {
    if (!value) return E_POINTER;
    CAutoLock lock(*this);
    *value = std::exchange(refreshRequest_, 0);
    return S_OK;
}

HRESULT CGrooveSampler::SetRefreshRequest(std::uint32_t value) {
    CAutoLock lock(*this);
    refreshRequest_ = value;
    return S_OK;
}

}  // namespace marnoth
