#pragma once

#include "platform/BasePin.h"
#include "platform/Unknown.h"

namespace marnoth {

/// Walks the media types that a pin proposes. When its proposals change meanwhile, `Next`, `Skip` and `Clone`
/// give `VFW_E_ENUM_OUT_OF_SYNC` until `Reset`. Holds a reference to the pin.
class CEnumMediaTypes : public Implements<CUnknown, IEnumMediaTypes> {
public:
    /// Begins at `position`; null when memory is out.
    static RefPtr<IEnumMediaTypes> Create(CBasePin& pin, int position);

    /// The types given out are the caller's, to be freed with `DeleteMediaType`.
    HRESULT Next(ULONG count, AM_MEDIA_TYPE** types, ULONG* fetched) override;
    /// `S_FALSE` when fewer are left; the walk is at its end then.
    HRESULT Skip(ULONG count) override;
    HRESULT Reset() override;
    HRESULT Clone(IEnumMediaTypes** out) override;

protected:
    IUnknown* FindInterface(REFIID iid) override;

private:
    CEnumMediaTypes(CBasePin& pin, int position);
    bool IsOutOfSync() const { return version_ != pin_->MediaTypeVersion(); }

    const RefPtr<CBasePin> pin_;
    int position_;
    int version_;
};

}  // namespace marnoth
