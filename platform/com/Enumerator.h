#pragma once

#include <new>

#include "platform/com/RefPtr.h"
#include "platform/com/Unknown.h"
#include "platform/graph/Graph.h"
#include "platform/system/CritSec.h"

namespace marnoth {

/// Walks a list that may change meanwhile: then `Next`, `Skip` and `Clone` give `VFW_E_ENUM_OUT_OF_SYNC`
/// until `Reset`.
///
/// `List` is a small value that says what is walked, and holds a reference to whatever owns it:
///   `Interface`, `Item`      the enumerator's interface, and what it gives out pointers to
///   `iid()`                  the identifier of `Interface`
///   `lock()`                 held during every operation
///   `version()`              grows whenever the list changes
///   `take(int position)`     an item that is the caller's, or null behind the last
///   `giveBack(Item*)`        lets go of one
template <class List>
class CEnumerator : public Implements<CUnknown, typename List::Interface> {
    using Interface = typename List::Interface;
    using Item = typename List::Item;

public:
    /// What an operation that makes an enumerator of `list` gives: `E_OUTOFMEMORY` or `S_OK`.
    static HRESULT Make(const List& list, Interface** out) { return MakeAt(list, 0, out); }

    /// The items given out are the caller's.
    HRESULT Next(ULONG count, Item** items, ULONG* fetched) override {
        if (!items) return E_POINTER;
        // Without a place for the number the caller couldn't tell how many it got.
        if (!fetched && count != 1) return E_INVALIDARG;
        if (fetched) *fetched = 0;
        CAutoLock hold(list_.lock());
        if (IsOutOfSync()) return VFW_E_ENUM_OUT_OF_SYNC;
        ULONG given = 0;
        while (given < count && (items[given] = list_.take(position_))) {
            ++given;
            ++position_;
        }
        if (fetched) *fetched = given;
        return given == count ? S_OK : S_FALSE;
    }

    /// `S_FALSE` when fewer are left; the walk is at its end then.
    HRESULT Skip(ULONG count) override {
        CAutoLock hold(list_.lock());
        if (IsOutOfSync()) return VFW_E_ENUM_OUT_OF_SYNC;
        for (ULONG i = 0; i < count; ++i) {
            Item* item = list_.take(position_);
            if (!item) return S_FALSE;
            list_.giveBack(item);
            ++position_;
        }
        return S_OK;
    }

    HRESULT Reset() override {
        CAutoLock hold(list_.lock());
        position_ = 0;
        version_ = list_.version();
        return S_OK;
    }

    HRESULT Clone(Interface** out) override {
        if (!out) return E_POINTER;
        *out = nullptr;
        CAutoLock hold(list_.lock());
        if (IsOutOfSync()) return VFW_E_ENUM_OUT_OF_SYNC;
        return MakeAt(list_, position_, out);
    }

protected:
    IUnknown* FindInterface(REFIID iid) override {
        return iid == List::iid() ? static_cast<Interface*>(this) : nullptr;
    }

private:
    CEnumerator(const List& list, int position)
        : Implements<CUnknown, Interface>(nullptr),
          list_(list),
          position_(position),
          version_(list.version()) {}

    static HRESULT MakeAt(const List& list, int position, Interface** out) {
        *out = new (std::nothrow) CEnumerator(list, position);
        return *out ? S_OK : E_OUTOFMEMORY;
    }

    bool IsOutOfSync() const { return version_ != list_.version(); }

    const List list_;
    int position_;
    int version_;
};

}  // namespace marnoth
