#include "hostkit/PinService.h"

namespace marnoth {

HRESULT PinService::OnPinSetChange(std::uint32_t, IBaseFilter*, std::int32_t) {
    return S_OK;
}

IUnknown* PinService::FindInterface(REFIID iid) {
    return iid == IID_IKvxPinHost ? static_cast<IKvxPinHost*>(this) : nullptr;
}

}  // namespace marnoth
