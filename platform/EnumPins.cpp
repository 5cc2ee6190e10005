#include "platform/EnumPins.h"

#include <new>

#include "platform/BasePin.h"

namespace marnoth {

CEnumPins::CEnumPins(CBaseFilter& filter, int position)
    : Implements(nullptr), filter_(&filter), position_(position), version_(filter.PinVersion()) {}

RefPtr<IEnumPins> CEnumPins::Create(CBaseFilter& filter, int position) {
    return RefPtr<IEnumPins>::adopt(new (std::nothrow) CEnumPins(filter, position));
}

IUnknown* CEnumPins::FindInterface(REFIID iid) {
    return iid == IID_IEnumPins ? static_cast<IEnumPins*>(this) : nullptr;
}

HRESULT CEnumPins::Next(ULONG count, IPin** pins, ULONG* fetched) {
    if (!pins) return E_POINTER;
    // Without a place for the number the caller couldn't tell how many it got.
    if (!fetched && count != 1) return E_INVALIDARG;
    if (fetched) *fetched = 0;
    CAutoLock hold(filter_->Lock());
    if (IsOutOfSync()) return VFW_E_ENUM_OUT_OF_SYNC;
    ULONG given = 0;
    while (given < count) {
        CBasePin* pin = filter_->GetPin(position_);
        if (!pin) break;
        pins[given++] = RefPtr<IPin>(pin).detach();
        ++position_;
    }
    if (fetched) *fetched = given;
    return given == count ? S_OK : S_FALSE;
}

HRESULT CEnumPins::Skip(ULONG count) {
    CAutoLock hold(filter_->Lock());
    if (IsOutOfSync()) return VFW_E_ENUM_OUT_OF_SYNC;
    const ULONG left = static_cast<ULONG>(filter_->GetPinCount() - position_);
    position_ += static_cast<int>(count < left ? count : left);
    return count <= left ? S_OK : S_FALSE;
}

HRESULT CEnumPins::Reset() {
    CAutoLock hold(filter_->Lock());
    position_ = 0;
    version_ = filter_->PinVersion();
    return S_OK;
}

HRESULT CEnumPins::Clone(IEnumPins** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    CAutoLock hold(filter_->Lock());
    if (IsOutOfSync()) return VFW_E_ENUM_OUT_OF_SYNC;
    *out = Create(*filter_, position_).detach();
    return *out ? S_OK : E_OUTOFMEMORY;
}

}  // namespace marnoth
