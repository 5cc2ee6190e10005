#include "host/Filter.h"
#include "platform/com/TypeInformation.h"
#include "seam/ClassIds.h"

namespace marnoth {

namespace {

/// One for all instruments of the module.
TypeInformation& samplerTypes() {
    static TypeInformation types(LIBID_Marnoth, 1, 0, IID_IGrooveSampler);
    return types;
}

}  // namespace

HRESULT CFilter::GetTypeInfoCount(UINT* count) {
    if (!count) return E_POINTER;
    *count = samplerTypes().isThere() ? 1 : 0;
    return S_OK;
}

HRESULT CFilter::GetTypeInfo(UINT index, LCID, ITypeInfo** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    return index != 0 ? E_INVALIDARG : samplerTypes().get(out);
}

HRESULT CFilter::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
    return samplerTypes().idsOfNames(names, count, ids);
}

HRESULT CFilter::Invoke(DISPID id, REFIID iid, LCID, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                        EXCEPINFO* exception, UINT* argumentError) {
    if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    return samplerTypes().invoke(static_cast<IGrooveSampler*>(this), id, flags, arguments, result, exception,
                                 argumentError);
}

}  // namespace marnoth
