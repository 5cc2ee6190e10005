#include "platform/windows/SystemDialog.h"

#include <string_view>

namespace marnoth {

namespace {

bool isDialog(HWND window) {
    wchar_t name[8]{};
    GetClassNameW(window, name, 8);
    return std::wstring_view(name) == L"#32770";
}

}  // namespace

thread_local SystemDialog* SystemDialog::watched_ = nullptr;

SystemDialog::SystemDialog(HWND owner)
    : owner_(owner), outer_(watched_), hook_(SetWindowsHookExW(WH_CBT, hear, nullptr, GetCurrentThreadId())) {
    watched_ = this;
}

LRESULT CALLBACK SystemDialog::hear(int code, WPARAM window, LPARAM details) {
    if (code == HCBT_CREATEWND && watched_ && !watched_->dialog_) {
        auto* const made = reinterpret_cast<HWND>(window);
        if (watched_->isIt(made, *reinterpret_cast<CBT_CREATEWNDW*>(details)->lpcs)) watched_->dialog_ = made;
    }
    return CallNextHookEx(nullptr, code, window, details);
}

bool SystemDialog::isIt(HWND window, const CREATESTRUCTW& made) const {
    return made.hwndParent == owner_ && (made.style & WS_CHILD) == 0 && isDialog(window);
}

void SystemDialog::end() const {
    if (!IsWindow(dialog_)) return;
    HWND const asked = GetLastActivePopup(dialog_);
    if (asked != dialog_ && isDialog(asked) && GetWindow(asked, GW_OWNER) == dialog_)
        EndDialog(asked, IDCANCEL);
    // Boxes without a button to cancel end all the same; larger dialogs tidy up when they are cancelled.
    if (GetDlgItem(dialog_, IDCANCEL))
        PostMessageW(dialog_, WM_COMMAND, IDCANCEL, 0);
    else
        EndDialog(dialog_, IDCANCEL);
}

}  // namespace marnoth
