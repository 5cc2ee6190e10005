#pragma once

#include "platform/com/Unknown.h"
#include "seam/KvxInterfaces.h"

namespace marnoth {

/// The project's key: one for the whole project.
class KeyService : public Implements<CUnknown, IKvxProjectKeyMap> {
public:
    /// 0 to 11 counted from A; 0xFFFFFFFF for none.
    explicit KeyService(std::uint32_t key) : Implements(nullptr), key_(key) {}

    HRESULT reserved3() override { return E_NOTIMPL; }
    HRESULT reserved4() override { return E_NOTIMPL; }
    HRESULT reserved5() override { return E_NOTIMPL; }
    /// The same key at any time.
    HRESULT GetKeyAt(const SynthTimeValue* when, std::uint32_t* key) override;

private:
    IUnknown* FindInterface(REFIID iid) override;

    std::uint32_t key_;
};

}  // namespace marnoth
