#pragma once

#include "platform/com/Com.h"
#include "platform/drawing/FocusPatience.h"

namespace marnoth {

/// Whether a page wants the keyboard, whether its window has it, and who had it before. Null for a window
/// does nothing. One thread.
class KeyboardHold {
public:
    /// Takes it, or gives it back to whoever had it, or else to the parent.
    void want(HWND window, bool wanted);
    /// Takes it if the page wants it or `anyway`.
    void take(HWND window, bool anyway = false) const;

    /// The window has it; `from` may be null.
    void came(HWND from);
    /// The window has lost it, maybe for a moment: asks to be asked again by WM_TIMER of `kTimer`.
    void left(HWND window);
    /// On that timer: true when it is lost. Once for each loss.
    bool isLost(HWND window);

    static constexpr UINT_PTR kTimer = 2;

private:
    FocusPatience patience_;
    HWND before_ = nullptr;
    bool wanted_ = false;
};

}  // namespace marnoth
