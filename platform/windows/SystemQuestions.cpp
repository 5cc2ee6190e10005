#include "platform/windows/SystemQuestions.h"

#include <string>

#include "platform/text/Text.h"
#include "platform/windows/SystemGeometry.h"
#include "platform/windows/SystemHandle.h"

namespace marnoth {

namespace {

/// An ampersand would underline what follows it.
std::wstring menuText(std::string_view text) {
    std::wstring result;
    for (const wchar_t unit : wideFromUtf8(text)) result.append(unit == L'&' ? 2 : 1, unit);
    return result;
}

}  // namespace

PageAnswer showMessage(HWND owner, std::string_view text, MessageKind kind) {
    const UINT buttons = kind == MessageKind::note    ? MB_OK
                         : kind == MessageKind::yesNo ? MB_YESNO
                                                      : MB_YESNOCANCEL;
    switch (MessageBoxW(owner, wideFromUtf8(text).c_str(), L"", buttons)) {
        case IDOK:
            return PageAnswer::ok;
        case IDYES:
            return PageAnswer::yes;
        case IDNO:
            return PageAnswer::no;
        default:
            return PageAnswer::cancel;
    }
}

int showMenu(HWND window, Point at, std::span<const MenuItem> items) {
    const MenuHandle menu(CreatePopupMenu());
    for (const MenuItem& item : items)
        AppendMenuW(menu.get(), MF_STRING | (item.checked ? MF_CHECKED : MF_UNCHECKED),
                    static_cast<UINT_PTR>(item.id), menuText(item.text).c_str());
    const POINT corner = onScreen(window, at);
    constexpr UINT kHow = TPM_LEFTALIGN | TPM_TOPALIGN | TPM_RIGHTBUTTON | TPM_RETURNCMD | TPM_NONOTIFY;
    return TrackPopupMenuEx(menu.get(), kHow, corner.x, corner.y, window, nullptr);
}

}  // namespace marnoth
