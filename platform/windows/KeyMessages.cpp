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

/// Whether a key message, which is the one that is being answered, tells of the control key that comes with a
/// third-level key.
bool isOfThirdLevelKey(const WindowMessage& message) {
    if (message.first != VK_CONTROL || isRight(message.second)) return false;
    // The system sends both at the same moment.
    const auto time = static_cast<DWORD>(GetMessageTime());
    MSG next{};
    return PeekMessageW(&next, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_NOREMOVE) != FALSE &&
           next.wParam == VK_MENU && isRight(next.lParam) && next.time == time;
}

/// How often a message that stands for several was meant.
int repeatsOf(const WindowMessage& message) {
    return std::max<int>(LOWORD(message.second), 1);
}

bool isControl(char32_t character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

}  // namespace

Modifiers heldModifiers() {
    const bool thirdLevel = isDown(VK_RMENU) && isDown(VK_LCONTROL);
    return {isDown(VK_SHIFT), isDown(VK_RCONTROL) || (isDown(VK_CONTROL) && !thirdLevel)};
}

MessageAnswer KeyMessages::answer(HWND window, const WindowMessage& message) {
    switch (message.id) {
        case WM_KEYDOWN:
            down(message);
            return 0;
        case WM_KEYUP:
            up(message);
            return 0;
        case WM_CHAR:
            character(message);
            return 0;
        case WM_GETDLGCODE:
            return DLGC_WANTALLKEYS | DLGC_WANTCHARS | DLGC_WANTARROWS | DLGC_WANTTAB;
        case WM_HELP:
            // The key has come as a key.
            return TRUE;
        default:
            return answerFocus(window, message);
    }
}

MessageAnswer KeyMessages::answerFocus(HWND window, const WindowMessage& message) {
    switch (message.id) {
        case WM_SETFOCUS:
            keyboard_.came(reinterpret_cast<HWND>(message.first));
            return 0;
        case WM_KILLFOCUS:
            keyboard_.left(window);
            return 0;
        case WM_TIMER:
            if (message.first != KeyboardHold::kTimer) return {};
            timer(window);
            return 0;
        default:
            return {};
    }
}

void KeyMessages::down(const WindowMessage& message) {
    if (isOfThirdLevelKey(message)) return;
    for (int times = repeatsOf(message); times > 0; --times)
        if (PageEvents* const page = listener_())
            page->keyDown(static_cast<int>(message.first), heldModifiers());
}

void KeyMessages::up(const WindowMessage& message) {
    if (isOfThirdLevelKey(message)) return;
    if (PageEvents* const page = listener_()) page->keyUp(static_cast<int>(message.first), heldModifiers());
}

void KeyMessages::character(const WindowMessage& message) {
    const std::optional<char32_t> character = joiner_.take(static_cast<char16_t>(message.first));
    // What the editing keys make beside their codes is none.
    if (!character || isControl(*character)) return;
    for (int times = repeatsOf(message); times > 0; --times)
        if (PageEvents* const page = listener_()) page->character(*character, heldModifiers());
}

void KeyMessages::timer(HWND window) {
    // A question takes the keyboard, and it comes back.
    PageEvents* const page = listener_();
    if (page && keyboard_.isLost(window)) page->focusLost();
}

}  // namespace marnoth
