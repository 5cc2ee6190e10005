#include "shells/windows/ClassFactory.h"

#include <atomic>

namespace marnoth {

namespace {

std::atomic<long> locks = 0;

}  // namespace

HRESULT CClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** out) {
    return served_.create(outer, iid, out);
}

HRESULT CClassFactory::LockServer(BOOL lock) {
    if (lock)
        ++locks;
    else
        --locks;
    return S_OK;
}

long CClassFactory::serverLocks() {
    return locks;
}

IUnknown* CClassFactory::FindInterface(REFIID iid) {
    return iid == IID_IClassFactory ? static_cast<IClassFactory*>(this) : nullptr;
}

}  // namespace marnoth
