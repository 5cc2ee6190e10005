#pragma once

#include <atomic>

#include "platform/com/Com.h"
#include "platform/com/ModuleLock.h"

namespace marnoth {

/// Identity and reference count of a COM object, alone or as a part of another object (aggregation).
///
/// The object begins with one reference, its maker's. `Inner()` is the object's own identity; without an
/// outer object it is also the one that the world sees. With an outer object the maker, who is that outer
/// object, keeps the inner identity, and every interface of the object answers with the outer object's
/// identity and count. When the inner count reaches 0 the object is deleted, so it lives on the heap. Counts
/// are safe on any thread.
class CUnknown {
public:
    CUnknown(const CUnknown&) = delete;
    CUnknown& operator=(const CUnknown&) = delete;

    /// The operations of `IUnknown` as all interfaces of the object have them: those of the identity that the
    /// world sees.
    HRESULT QueryInterface(REFIID iid, void** out) { return Owner()->QueryInterface(iid, out); }
    ULONG AddRef() { return Owner()->AddRef(); }
    ULONG Release() { return Owner()->Release(); }

    /// The identity that the world sees; no reference is added.
    IUnknown* Owner() { return outer_ ? outer_ : &inner_; }
    /// The object's own identity; no reference is added.
    IUnknown* Inner() { return &inner_; }

protected:
    /// `outer` may be null. No reference to it is taken: it lives longer than its parts.
    explicit CUnknown(IUnknown* outer) : inner_(*this), outer_(outer) {}
    virtual ~CUnknown() = default;

    /// The object's own answer to `iid`, without a reference; null for an interface that it doesn't have.
    /// Whoever overrides this hands on what isn't its own. `IID_IUnknown` never arrives here.
    virtual IUnknown* FindInterface(REFIID iid) = 0;

private:
    struct InnerIdentity final : IUnknown {
        explicit InnerIdentity(CUnknown& object) : object(object) {}
        HRESULT QueryInterface(REFIID iid, void** out) override;
        ULONG AddRef() override;
        ULONG Release() override;

        CUnknown& object;
        std::atomic<ULONG> count{1};
    };

    InnerIdentity inner_;
    IUnknown* const outer_;
    [[no_unique_address]] ModuleLock module_;
};

/// `Base` with further interfaces: routes the `IUnknown` part of all of them to `Base`, which is a `CUnknown`
/// or anything else that has the three operations. What answers to which identifier, `FindInterface` still
/// says.
template <class Base, class... Interfaces>
class Implements : public Base, public Interfaces... {
public:
    using Base::Base;

    HRESULT QueryInterface(REFIID iid, void** out) override { return Base::QueryInterface(iid, out); }
    ULONG AddRef() override { return Base::AddRef(); }
    ULONG Release() override { return Base::Release(); }
};

/// The end of every `QueryInterface`: gives out `found` with a reference, or `E_NOINTERFACE` and null for
/// null.
HRESULT AnswerQuery(IUnknown* found, void** out);

}  // namespace marnoth
