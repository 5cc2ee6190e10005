#pragma once

#include <atomic>
#include <utility>

#include "platform/com/Com.h"

namespace marnoth {

/// The owner of one handle that the system wants back, or of none. Handles of a kind are counted, since the
/// system itself doesn't tell everywhere how many a process holds.
///
/// `Kind` says `Handle` and has `giveBack(Handle)`. One owner is used by one thread at a time.
template <class Kind>
class SystemHandle {
public:
    using Handle = typename Kind::Handle;

    SystemHandle() = default;
    /// Takes over `handle`, which is null when the system hasn't given any.
    explicit SystemHandle(Handle handle) : handle_(handle) {
        if (handle_) ++live_;
    }
    SystemHandle(SystemHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    SystemHandle& operator=(SystemHandle&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~SystemHandle() { reset(); }

    Handle get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }
    void reset() {
        if (Handle const old = release()) Kind::giveBack(old);
    }
    /// Gives it away: somebody else gives it back, or has done so.
    Handle release() {
        if (handle_) --live_;
        return std::exchange(handle_, nullptr);
    }

    /// How many of the kind are owned in this module now. Any thread.
    static long live() { return live_; }

private:
    static inline std::atomic<long> live_ = 0;
    Handle handle_ = nullptr;
};

struct DeviceKind {
    using Handle = HDC;
    static void giveBack(HDC device) { DeleteDC(device); }
};
struct BitmapKind {
    using Handle = HBITMAP;
    static void giveBack(HBITMAP bitmap) { DeleteObject(bitmap); }
};
struct FontKind {
    using Handle = HFONT;
    static void giveBack(HFONT font) { DeleteObject(font); }
};
struct CursorKind {
    using Handle = HCURSOR;
    static void giveBack(HCURSOR cursor) { DestroyCursor(cursor); }
};
struct MenuKind {
    using Handle = HMENU;
    static void giveBack(HMENU menu) { DestroyMenu(menu); }
};
struct WindowKind {
    using Handle = HWND;
    static void giveBack(HWND window) { DestroyWindow(window); }
};
struct HookKind {
    using Handle = HHOOK;
    static void giveBack(HHOOK hook) { UnhookWindowsHookEx(hook); }
};
struct MemoryKind {
    using Handle = HGLOBAL;
    static void giveBack(HGLOBAL memory) { GlobalFree(memory); }
};

using DeviceHandle = SystemHandle<DeviceKind>;  ///< a device of memory
using BitmapHandle = SystemHandle<BitmapKind>;
using FontHandle = SystemHandle<FontKind>;
using CursorHandle = SystemHandle<CursorKind>;
using MenuHandle = SystemHandle<MenuKind>;
using WindowHandle = SystemHandle<WindowKind>;
using HookHandle = SystemHandle<HookKind>;
using MemoryHandle = SystemHandle<MemoryKind>;  ///< memory that programs hand each other

}  // namespace marnoth
