#pragma once

#include "platform/com/Com.h"

namespace marnoth::test {

/// A COM object that belongs to the test: references are counted, for the test to look at, and nothing is
/// ever deleted. What it answers to a query, `find` says: the interface asked for, as that interface's
/// pointer, or null.
template <class... Interfaces>
class TestObject : public Interfaces... {
public:
    HRESULT QueryInterface(REFIID iid, void** out) override {
        *out = find(iid);
        if (!*out) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return ++references; }
    ULONG Release() override { return --references; }

    ULONG references = 0;

protected:
    virtual void* find(REFIID iid) = 0;
};

}  // namespace marnoth::test
