#pragma once

#include "platform/com/Unknown.h"
#include "shells/windows/ClassTable.h"

namespace marnoth {

/// Makes objects of one class of the module, and keeps the module loaded for whoever asks for that.
class CClassFactory : public Implements<CUnknown, IClassFactory> {
public:
    explicit CClassFactory(const ServedClass& served) : Implements(nullptr), served_(served) {}

    /// With `outer`, whose part the object becomes, `iid` must be `IID_IUnknown`, else `E_NOINTERFACE`.
    /// `E_POINTER` without `out`, `E_OUTOFMEMORY`, or the failure of the object's construction.
    HRESULT CreateInstance(IUnknown* outer, REFIID iid, void** out) override;
    /// One lock more, or one less; also less than were taken.
    HRESULT LockServer(BOOL lock) override;

    static long serverLocks();

private:
    IUnknown* FindInterface(REFIID iid) override;

    const ServedClass& served_;
};

}  // namespace marnoth
