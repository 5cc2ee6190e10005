#pragma once

#include "platform/windows/SystemHandle.h"

namespace marnoth {

/// Catches the dialog that a call of the system is about to make, so that it can be ended from within: one at
/// a time is watched on a thread, the innermost. Made before the call and gone behind it.
class SystemDialog {
public:
    /// The first dialog that this thread makes for `owner`.
    explicit SystemDialog(HWND owner);
    ~SystemDialog() { watched_ = outer_; }
    SystemDialog(const SystemDialog&) = delete;
    SystemDialog& operator=(const SystemDialog&) = delete;

    /// Ends what the dialog itself asks, and then the dialog as if its user had cancelled it. It is gone when
    /// the messages under way have been answered. Nothing without a dialog.
    void end() const;

private:
    static LRESULT CALLBACK hear(int code, WPARAM window, LPARAM details);
    bool isIt(HWND window, const CREATESTRUCTW& made) const;

    static thread_local SystemDialog* watched_;

    HWND const owner_;
    HWND dialog_ = nullptr;
    SystemDialog* const outer_;
    HookHandle hook_;
};

}  // namespace marnoth
