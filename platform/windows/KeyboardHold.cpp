#include "platform/windows/KeyboardHold.h"

namespace marnoth {

void KeyboardHold::want(HWND window, bool wanted) {
    wanted_ = wanted;
    if (!window) return;
    if (wanted) return take(window);
    if (GetFocus() == window) SetFocus(IsWindow(before_) ? before_ : GetParent(window));
}

void KeyboardHold::take(HWND window, bool anyway) const {
    if (window && (wanted_ || anyway) && GetFocus() != window) SetFocus(window);
}

void KeyboardHold::came(HWND from) {
    before_ = from;
    patience_.returned();
}

void KeyboardHold::left(HWND window) {
    patience_.left(std::chrono::steady_clock::now());
    SetTimer(window, kTimer, static_cast<UINT>(FocusPatience::kPatience.count()), nullptr);
}

bool KeyboardHold::isLost(HWND window) {
    const bool isLost = patience_.isLost(std::chrono::steady_clock::now());
    // The system's timer and the clock needn't agree: it is asked again until there is nothing to wait for.
    if (!patience_.deadline()) KillTimer(window, kTimer);
    return isLost;
}

}  // namespace marnoth
