#pragma once

#include "platform/com/Unknown.h"
#include "seam/KvxInterfaces.h"

namespace marnoth {

/// The host's say in the set of output pins: accepts every change.
class PinService : public Implements<CUnknown, IKvxPinHost> {
public:
    PinService() : Implements(nullptr) {}

    HRESULT OnPinSetChange(std::uint32_t kind, IBaseFilter* filter, std::int32_t count) override;

private:
    IUnknown* FindInterface(REFIID iid) override;
};

}  // namespace marnoth
