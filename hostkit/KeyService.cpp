#include "hostkit/KeyService.h"

namespace marnoth {

HRESULT KeyService::GetKeyAt(const SynthTimeValue*, std::uint32_t* key) {
    if (!key) return E_POINTER;
    *key = key_;
    return S_OK;
}

IUnknown* KeyService::FindInterface(REFIID iid) {
    return iid == IID_IKvxProjectKeyMap ? static_cast<IKvxProjectKeyMap*>(this) : nullptr;
}

}  // namespace marnoth
