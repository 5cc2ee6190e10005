#include "platform/windows/KeyMessages.h"

#include <algorithm>

namespace marnoth {

namespace {

bool isDown(int key) {
    return GetKeyState(key) < 0;
}

/// True for the right one of two keys.
bool isRight(LPARAM details) {
    return (HIWORD(details) & KF_EXTENDED) != 0;
}

}  // namespace

Modifiers heldModifiers() {
    const bool thirdLevel = isDown(VK_RMENU) && isDown(VK_LCONTROL);
    return {isDown(VK_SHIFT), isDown(VK_RCONTROL) || (isDown(VK_CONTROL) && !thirdLevel)};
}

bool isOfThirdLevelKey(WPARAM key, LPARAM details) {
    if (key != VK_CONTROL || isRight(details)) return false;
    // The system sends both at the same moment.
    const auto time = static_cast<DWORD>(GetMessageTime());
    MSG next{};
    return PeekMessageW(&next, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_NOREMOVE) != FALSE &&
           next.wParam == VK_MENU && isRight(next.lParam) && next.time == time;
}

int repeatsOf(LPARAM details) {
    return std::max<int>(LOWORD(details), 1);
}

}  // namespace marnoth
