#pragma once

#include "platform/com/Unknown.h"

namespace marnoth {

/// What the streams of the host kit have in common: they can't be copied by themselves, locked, cloned or
/// reverted, and answer `STG_E_INVALIDFUNCTION` to it. One thread at a time.
class PlainStream : public Implements<CUnknown, IStream> {
public:
    PlainStream() : Implements(nullptr) {}

    HRESULT CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
        return STG_E_INVALIDFUNCTION;
    }
    HRESULT Revert() override { return STG_E_INVALIDFUNCTION; }
    HRESULT LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return STG_E_INVALIDFUNCTION; }
    HRESULT UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return STG_E_INVALIDFUNCTION; }
    HRESULT Clone(IStream** out) override {
        if (out) *out = nullptr;
        return STG_E_INVALIDFUNCTION;
    }
};

}  // namespace marnoth
