#pragma once

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/com/RefPtr.h"
#include "platform/com/Unknown.h"
#include "platform/drawing/Bitmap.h"
#include "platform/drawing/PageWindow.h"
#include "platform/windows/SystemHandle.h"

namespace marnoth::test {

/// What a page may ask of its frame; it counts that, and says no.
class FrameSite final : public Implements<CUnknown, IPropertyPageSite> {
public:
    FrameSite() : Implements(nullptr) {}

    int calls = 0;

    HRESULT OnStatusChange(DWORD) override { return no(); }
    HRESULT GetLocaleID(LCID*) override { return no(); }
    HRESULT GetPageContainer(IUnknown**) override { return no(); }
    HRESULT TranslateAccelerator(MSG*) override { return no(); }

private:
    HRESULT no() {
        ++calls;
        return E_NOTIMPL;
    }
    IUnknown* FindInterface(REFIID iid) override {
        return iid == IID_IPropertyPageSite ? static_cast<IPropertyPageSite*>(this) : nullptr;
    }
};

/// A host's frame around one page: a window without a border, the messages of the thread, and a user's mouse
/// and keys, which come as messages and so need no display. Points are client pixels of the page.
class PropertyFrame {
public:
    static constexpr POINT kPagePlace{20, 30};

    explicit PropertyFrame(RefPtr<IPropertyPage> shown = {}, POINT corner = {100, 60})
        : page(std::move(shown)), window_(make(corner)) {
        SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        ShowWindow(window_, SW_SHOW);
    }
    ~PropertyFrame() { destroyWindow(); }
    PropertyFrame(const PropertyFrame&) = delete;
    PropertyFrame& operator=(const PropertyFrame&) = delete;

    RefPtr<IPropertyPage> page;

    HWND window() const { return window_; }
    /// Of the page; null without one.
    HWND pageWindow() const { return GetWindow(window_, GW_CHILD); }

    // What a host does, in the usual order.
    void setObject(IUnknown* object) { EXPECT_EQ(page->SetObjects(1, &object), S_OK); }
    HRESULT activate() const {
        const RECT place{kPagePlace.x, kPagePlace.y, kPagePlace.x + 600, kPagePlace.y + 553};
        return page->Activate(window_, &place, FALSE);
    }
    void show() {
        EXPECT_EQ(activate(), S_OK);
        EXPECT_EQ(page->Show(SW_SHOW), S_OK);
        settle();
    }
    void destroyWindow() {
        if (const HWND window = std::exchange(window_, nullptr)) DestroyWindow(window);
    }

    /// Dispatches what waits, keys by way of the page as frames do.
    void settle() const {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) dispatch(message);
    }
    /// Goes on until the page's timer has come once.
    void tick() const {
        MSG message;
        for (bool ticked = false; !ticked && GetMessageW(&message, nullptr, 0, 0) > 0;) {
            ticked = message.message == WM_TIMER && message.wParam == 1 && message.hwnd == pageWindow();
            dispatch(message);
        }
        settle();
    }
    void dispatch(MSG& message) const {
        const bool isKey = message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST;
        if (isKey && page && page->TranslateAccelerator(&message) == S_OK) return;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }

    // What a user does; the page's window has it at once, and paints.
    void press(Point at) { mouse(WM_LBUTTONDOWN, at, MK_LBUTTON); }
    void move(Point to) { mouse(WM_MOUSEMOVE, to, pressed_ ? MK_LBUTTON : 0); }
    void release(Point at) { mouse(WM_LBUTTONUP, at, 0); }
    void hold(int key) { setKey(key, 0x80); }
    void let(int key) { setKey(key, 0); }

    /// Called once on this thread as soon as a question of the page is open.
    void onQuestion(std::function<void(HWND)> act) {
        onQuestion_ = std::move(act);
        SetTimer(window_, kQuestionTimer, 10, nullptr);
    }

    /// Has this thread call `act`, also while a question is open. Any thread.
    void post(std::function<void()> act) const {
        auto* const given = new std::function<void()>(std::move(act));
        PostMessageW(window_, kPosted, 0, reinterpret_cast<LPARAM>(given));
    }

    /// The pixels of the page's window.
    Bitmap picture() const {
        settle();
        UpdateWindow(pageWindow());
        RECT area{};
        GetClientRect(pageWindow(), &area);
        return copied(pageWindow(), area.right, area.bottom);
    }

private:
    static constexpr UINT_PTR kQuestionTimer = 7;
    static constexpr UINT kPosted = WM_APP;

    static HWND make(POINT corner) {
        static const ATOM kind = [] {
            WNDCLASSW told{};
            told.lpfnWndProc = &PropertyFrame::take;
            told.hInstance = GetModuleHandleW(nullptr);
            told.lpszClassName = L"MarnothTestFrame";
            return RegisterClassW(&told);
        }();
        EXPECT_NE(kind, 0);
        const HWND made =
            CreateWindowExW(0, L"MarnothTestFrame", L"frame", WS_POPUP | WS_CLIPCHILDREN, corner.x, corner.y,
                            640, 603, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
        EXPECT_TRUE(made) << GetLastError();
        return made;
    }

    static LRESULT CALLBACK take(HWND window, UINT message, WPARAM wide, LPARAM lange) {
        if (message == kPosted) {
            (*std::unique_ptr<std::function<void()>>(reinterpret_cast<std::function<void()>*>(lange)))();
            return 0;
        }
        auto* const self = reinterpret_cast<PropertyFrame*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (self && message == WM_TIMER && wide == kQuestionTimer) {
            self->lookForQuestion();
            return 0;
        }
        return DefWindowProcW(window, message, wide, lange);
    }

    void lookForQuestion() {
        HWND found = nullptr;
        EnumThreadWindows(GetCurrentThreadId(), &isQuestion, reinterpret_cast<LPARAM>(&found));
        if (!found || !onQuestion_) return;
        KillTimer(window_, kQuestionTimer);
        std::exchange(onQuestion_, nullptr)(found);
    }
    /// A box or a menu of the system.
    static BOOL CALLBACK isQuestion(HWND window, LPARAM found) {
        wchar_t kind[16]{};
        GetClassNameW(window, kind, 16);
        const std::wstring name = kind;
        if ((name != L"#32770" && name != L"#32768") || !IsWindowVisible(window)) return TRUE;
        *reinterpret_cast<HWND*>(found) = window;
        return FALSE;
    }

    void mouse(UINT message, Point at, WPARAM buttons) {
        pressed_ = buttons & MK_LBUTTON;
        SendMessageW(pageWindow(), message, buttons | heldFlags_, MAKELPARAM(at.x, at.y));
        settle();
    }
    void setKey(int key, BYTE state) {
        const WPARAM flag = key == kKeyShift ? MK_SHIFT : MK_CONTROL;
        heldFlags_ = state ? heldFlags_ | flag : heldFlags_ & ~flag;
        std::array<BYTE, 256> keys{};
        GetKeyboardState(keys.data());
        keys.at(static_cast<std::size_t>(key)) = state;
        SetKeyboardState(keys.data());
    }

    /// What a window is drawn on, for a scope.
    class WindowDevice {
    public:
        explicit WindowDevice(HWND window) : window_(window), device_(GetDC(window)) {}
        ~WindowDevice() { ReleaseDC(window_, device_); }
        WindowDevice(const WindowDevice&) = delete;
        WindowDevice& operator=(const WindowDevice&) = delete;
        HDC get() const { return device_; }

    private:
        HWND const window_;
        HDC const device_;
    };

    static Bitmap copied(HWND window, int width, int height) {
        BITMAPINFO form{};
        form.bmiHeader = {sizeof form.bmiHeader, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void* bits = nullptr;
        const BitmapHandle picture(CreateDIBSection(nullptr, &form, DIB_RGB_COLORS, &bits, nullptr, 0));
        const WindowDevice from(window);
        const DeviceHandle to(CreateCompatibleDC(from.get()));
        const HGDIOBJ before = SelectObject(to.get(), picture.get());
        EXPECT_TRUE(BitBlt(to.get(), 0, 0, width, height, from.get(), 0, 0, SRCCOPY));
        SelectObject(to.get(), before);
        GdiFlush();
        Bitmap bitmap(width, height);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const auto* const pixel = static_cast<const BYTE*>(bits) + 4 * (y * width + x);
                bitmap.at(x, y) = {pixel[2], pixel[1], pixel[0]};
            }
        return bitmap;
    }

    HWND window_;
    bool pressed_ = false;
    WPARAM heldFlags_ = 0;
    std::function<void(HWND)> onQuestion_;
};

}  // namespace marnoth::test
