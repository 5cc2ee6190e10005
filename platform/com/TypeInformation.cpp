#include "platform/com/TypeInformation.h"

#ifdef _WIN32
#include <oleauto.h>

#include "platform/com/RefPtr.h"
#endif

namespace marnoth {

TypeInformation::TypeInformation(REFGUID library, WORD major, WORD minor, REFIID iid)
    : library_(library), major_(major), minor_(minor), interface_(iid) {}

#ifdef _WIN32

ITypeInfo* TypeInformation::find() {
    constexpr LCID kNeutral = 0;
    const std::lock_guard hold(lock_);
    if (info_) return info_;
    RefPtr<ITypeLib> library;
    if (FAILED(LoadRegTypeLib(library_, major_, minor_, kNeutral, library.put()))) return nullptr;
    RefPtr<ITypeInfo> info;
    if (FAILED(library->GetTypeInfoOfGuid(interface_, info.put()))) return nullptr;
    info_ = info.detach();
    return info_;
}

HRESULT TypeInformation::get(ITypeInfo** out) {
    *out = RefPtr<ITypeInfo>(find()).detach();
    return *out ? S_OK : E_NOTIMPL;
}

HRESULT TypeInformation::idsOfNames(LPOLESTR* names, UINT count, DISPID* ids) {
    ITypeInfo* info = find();
    return info ? info->GetIDsOfNames(names, count, ids) : E_NOTIMPL;
}

HRESULT TypeInformation::invoke(void* object, DISPID id, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                                EXCEPINFO* exception, UINT* argumentError) {
    ITypeInfo* info = find();
    if (!info) return E_NOTIMPL;
    return info->Invoke(object, id, flags, arguments, result, exception, argumentError);
}

#else

ITypeInfo* TypeInformation::find() {
    return nullptr;
}

HRESULT TypeInformation::get(ITypeInfo** out) {
    *out = nullptr;
    return E_NOTIMPL;
}

HRESULT TypeInformation::idsOfNames(LPOLESTR*, UINT, DISPID*) {
    return E_NOTIMPL;
}

HRESULT TypeInformation::invoke(void*, DISPID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) {
    return E_NOTIMPL;
}

#endif

}  // namespace marnoth
