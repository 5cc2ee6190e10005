#pragma once

#include "platform/BaseFilter.h"

namespace marnoth {

/// Walks the pins of a filter. When pins come or go meanwhile, `Next`, `Skip` and `Clone` give
/// `VFW_E_ENUM_OUT_OF_SYNC` until `Reset`. Holds a reference to the filter.
class CEnumPins : public Implements<CUnknown, IEnumPins> {
public:
    /// Begins at `position`; null when memory is out.
    static RefPtr<IEnumPins> Create(CBaseFilter& filter, int position);

    HRESULT Next(ULONG count, IPin** pins, ULONG* fetched) override;
    /// `S_FALSE` when fewer are left; the walk is at its end then.
    HRESULT Skip(ULONG count) override;
    HRESULT Reset() override;
    HRESULT Clone(IEnumPins** out) override;

protected:
    IUnknown* FindInterface(REFIID iid) override;

private:
    CEnumPins(CBaseFilter& filter, int position);
    bool IsOutOfSync() const { return version_ != filter_->PinVersion(); }

    const RefPtr<CBaseFilter> filter_;
    int position_;
    int version_;
};

}  // namespace marnoth
