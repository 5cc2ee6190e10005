#pragma once

#include <cstddef>
#include <utility>

namespace marnoth {

/// The one owner of counted things: COM objects and samples. Whatever it points to has `AddRef` and
/// `Release`.
///
/// It does no locking: one pointer is used by one thread at a time. Whether several of them may share an
/// object, the object decides.
template <class T>
class RefPtr {
public:
    RefPtr() = default;
    RefPtr(std::nullptr_t) {}
    /// Shares `object`: adds a reference.
    explicit RefPtr(T* object) : object_(object) {
        if (object_) object_->AddRef();
    }
    RefPtr(const RefPtr& other) : RefPtr(other.object_) {}
    RefPtr(RefPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    RefPtr& operator=(RefPtr other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~RefPtr() { reset(); }

    /// Takes over a reference that the caller already holds.
    static RefPtr adopt(T* object) {
        RefPtr pointer;
        pointer.object_ = object;
        return pointer;
    }

    void reset() {
        if (T* old = std::exchange(object_, nullptr)) old->Release();
    }
    /// Gives the reference away; the receiver releases it.
    T* detach() { return std::exchange(object_, nullptr); }
    /// For operations that give out a reference through a pointer. Lets go of what was held.
    T** put() {
        reset();
        return &object_;
    }
    /// The same for operations whose out-pointer is untyped (`QueryInterface`).
    void** putVoid() { return reinterpret_cast<void**>(put()); }

    T* get() const { return object_; }
    T* operator->() const { return object_; }
    T& operator*() const { return *object_; }
    explicit operator bool() const { return object_ != nullptr; }
    friend bool operator==(const RefPtr& a, const RefPtr& b) { return a.object_ == b.object_; }
    friend bool operator==(const RefPtr& a, const T* b) { return a.object_ == b; }

private:
    T* object_ = nullptr;
};

}  // namespace marnoth
