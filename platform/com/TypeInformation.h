#pragma once

#include <mutex>

#include "platform/com/Com.h"

namespace marnoth {

/// How an interface answers scripts by name: from the type library that is registered for it on this machine.
///
/// The library is looked for when it is first needed, again as long as it can't be found, and kept from then
/// on: the object is meant to live as long as the module, and never lets go of what it has found. Without a
/// library, which outside Windows there never is, everything gives `E_NOTIMPL`. Any thread.
class TypeInformation {
public:
    /// Of the interface `iid` in version `major`.`minor` of `library`, in the neutral locale.
    TypeInformation(REFGUID library, WORD major, WORD minor, REFIID iid);
    TypeInformation(const TypeInformation&) = delete;
    TypeInformation& operator=(const TypeInformation&) = delete;

    bool isThere() { return find() != nullptr; }

    /// With a reference; null when there is none.
    HRESULT get(ITypeInfo** out);
    HRESULT idsOfNames(LPOLESTR* names, UINT count, DISPID* ids);
    /// `object` is the object's pointer of the interface.
    HRESULT invoke(void* object, DISPID id, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                   EXCEPINFO* exception, UINT* argumentError);

private:
    ITypeInfo* find();

    [[maybe_unused]] const GUID library_;
    [[maybe_unused]] const WORD major_;
    [[maybe_unused]] const WORD minor_;
    [[maybe_unused]] const IID interface_;
    std::mutex lock_;
    /// Owns a reference that is never given back: when the module ends, the system's part that it belongs to
    /// may be gone.
    [[maybe_unused]] ITypeInfo* info_ = nullptr;
};

}  // namespace marnoth
