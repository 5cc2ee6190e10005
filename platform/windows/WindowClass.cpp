#include "platform/windows/WindowClass.h"

#include <system_error>

#include "platform/windows/Module.h"

namespace marnoth {

namespace {

constexpr const wchar_t* kClassName = L"Marnoth page";
constexpr int kTakerPlace = 0;  ///< in the bytes that each window has for us

MessageTaker* takerOf(HWND window) {
    return reinterpret_cast<MessageTaker*>(GetWindowLongPtrW(window, kTakerPlace));
}

void setTaker(HWND window, MessageTaker* taker) {
    SetWindowLongPtrW(window, kTakerPlace, reinterpret_cast<LONG_PTR>(taker));
}

LRESULT CALLBACK dispatch(HWND window, UINT message, WPARAM first, LPARAM second) {
    if (message == WM_NCCREATE)
        setTaker(window,
                 static_cast<MessageTaker*>(reinterpret_cast<CREATESTRUCTW*>(second)->lpCreateParams));
    MessageTaker* const taker = takerOf(window);
    if (!taker) return DefWindowProcW(window, message, first, second);
    if (message == WM_NCDESTROY) setTaker(window, nullptr);
    return taker->take(window, message, first, second);
}

[[noreturn]] void fail(const char* what) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

/// A parent of a language that is read from the right would turn the page over.
void keepLeftToRight(HWND window) {
    SetWindowLongPtrW(window, GWL_EXSTYLE,
                      GetWindowLongPtrW(window, GWL_EXSTYLE) & ~LONG_PTR{WS_EX_LAYOUTRTL});
}

/// Who comes first registers it; for the others it is there.
void registerClass() {
    WNDCLASSEXW description{};
    description.cbSize = sizeof description;
    description.style = CS_DBLCLKS;
    description.lpfnWndProc = dispatch;
    description.cbWndExtra = sizeof(LONG_PTR);
    description.hInstance = thisModule();
    description.lpszClassName = kClassName;
    if (RegisterClassExW(&description) == 0 && GetLastError() != ERROR_CLASS_ALREADY_EXISTS)
        fail("The page's window class");
}

}  // namespace

HWND makeChildWindow(HWND parent, const RECT& place, MessageTaker& taker) {
    registerClass();
    HWND const window = CreateWindowExW(0, kClassName, L"", WS_CHILD | WS_CLIPSIBLINGS | WS_TABSTOP,
                                        place.left, place.top, place.right - place.left,
                                        place.bottom - place.top, parent, nullptr, thisModule(), &taker);
    if (!window) fail("The page's window");
    keepLeftToRight(window);
    return window;
}

void unregisterChildWindows() noexcept {
    UnregisterClassW(kClassName, thisModule());
}

}  // namespace marnoth
