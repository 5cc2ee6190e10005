#include "platform/EnumMediaTypes.h"

#include <new>

#include "platform/BaseFilter.h"

namespace marnoth {

CEnumMediaTypes::CEnumMediaTypes(CBasePin& pin, int position)
    : Implements(nullptr), pin_(&pin), position_(position), version_(pin.MediaTypeVersion()) {}

RefPtr<IEnumMediaTypes> CEnumMediaTypes::Create(CBasePin& pin, int position) {
    return RefPtr<IEnumMediaTypes>::adopt(new (std::nothrow) CEnumMediaTypes(pin, position));
}

IUnknown* CEnumMediaTypes::FindInterface(REFIID iid) {
    return iid == IID_IEnumMediaTypes ? static_cast<IEnumMediaTypes*>(this) : nullptr;
}

HRESULT CEnumMediaTypes::Next(ULONG count, AM_MEDIA_TYPE** types, ULONG* fetched) {
    if (!types) return E_POINTER;
    // Without a place for the number the caller couldn't tell how many it got.
    if (!fetched && count != 1) return E_INVALIDARG;
    if (fetched) *fetched = 0;
    CAutoLock hold(pin_->Filter().Lock());
    if (IsOutOfSync()) return VFW_E_ENUM_OUT_OF_SYNC;
    ULONG given = 0;
    while (given < count) {
        CMediaType type;
        if (pin_->GetMediaType(position_, &type) != S_OK) break;
        types[given] = CreateMediaType(*type);
        if (!types[given]) break;
        ++given;
        ++position_;
    }
    if (fetched) *fetched = given;
    return given == count ? S_OK : S_FALSE;
}

HRESULT CEnumMediaTypes::Skip(ULONG count) {
    CAutoLock hold(pin_->Filter().Lock());
    if (IsOutOfSync()) return VFW_E_ENUM_OUT_OF_SYNC;
    for (ULONG i = 0; i < count; ++i) {
        CMediaType type;
        if (pin_->GetMediaType(position_, &type) != S_OK) return S_FALSE;
        ++position_;
    }
    return S_OK;
}

HRESULT CEnumMediaTypes::Reset() {
    CAutoLock hold(pin_->Filter().Lock());
    position_ = 0;
    version_ = pin_->MediaTypeVersion();
    return S_OK;
}

HRESULT CEnumMediaTypes::Clone(IEnumMediaTypes** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    CAutoLock hold(pin_->Filter().Lock());
    if (IsOutOfSync()) return VFW_E_ENUM_OUT_OF_SYNC;
    *out = Create(*pin_, position_).detach();
    return *out ? S_OK : E_OUTOFMEMORY;
}

}  // namespace marnoth
