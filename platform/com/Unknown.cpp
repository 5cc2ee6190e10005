#include "platform/com/Unknown.h"

namespace marnoth {

namespace {

/// A count no pair of calls brings to 0: held while the object is being destroyed, so that a destructor which
/// hands the object out once more doesn't destroy it twice.
constexpr ULONG kDying = 0x40000000;

}  // namespace

HRESULT AnswerQuery(IUnknown* found, void** out) {
    if (!out) return E_POINTER;
    *out = found;
    if (!found) return E_NOINTERFACE;
    found->AddRef();
    return S_OK;
}

HRESULT CUnknown::InnerIdentity::QueryInterface(REFIID iid, void** out) {
    if (iid == IID_IUnknown) return AnswerQuery(this, out);
    return AnswerQuery(object.FindInterface(iid), out);
}

ULONG CUnknown::InnerIdentity::AddRef() {
    return ++count;
}

ULONG CUnknown::InnerIdentity::Release() {
    const ULONG left = --count;
    if (left == 0) {
        count = kDying;
        delete &object;
    }
    return left;
}

}  // namespace marnoth
