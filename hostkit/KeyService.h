#pragma once

#include <atomic>

#include "platform/com/Unknown.h"
#include "seam/KvxInterfaces.h"

namespace marnoth {

/// The project's key: one for the whole project, which may change.
class KeyService : public Implements<CUnknown, IKvxProjectKeyMap> {
public:
    /// 0 to 11 counted from A; 0xFFFFFFFF for none.
    explicit KeyService(std::uint32_t key) : Implements(nullptr), key_(key) {}

    /// Holds from the next block on. Any thread.
    void setKey(std::uint32_t key) { key_ = key; }

    HRESULT reserved3() override { return E_NOTIMPL; }
    HRESULT reserved4() override { return E_NOTIMPL; }
    HRESULT reserved5() override { return E_NOTIMPL; }
    /// The same key at any time.
    HRESULT GetKeyAt(const SynthTimeValue* when, std::uint32_t* key) override;

private:
    IUnknown* FindInterface(REFIID iid) override;

    std::atomic<std::uint32_t> key_;
};

}  // namespace marnoth
