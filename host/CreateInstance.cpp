#include "host/CreateInstance.h"

#include <new>

#include "host/Filter.h"

namespace marnoth {

HRESULT createInstrument(IUnknown* outer, REFIID iid, void** out) try {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (outer && iid != IID_IUnknown) return E_NOINTERFACE;
    HRESULT result = S_OK;
    const auto inner = RefPtr<IUnknown>::adopt((new CFilter(outer, &result))->Inner());
    return FAILED(result) ? result : inner->QueryInterface(iid, out);
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

}  // namespace marnoth
