#pragma once

#include "platform/com/Com.h"

namespace marnoth::test {

// What a user does, by the system's own input: it goes where the system sends it.

inline void input(INPUT event) {
    SendInput(1, &event, sizeof event);
}

inline void mouseInput(DWORD what, POINT at = {}, DWORD data = 0) {
    INPUT event{};
    event.type = INPUT_MOUSE;
    event.mi.dx = at.x;
    event.mi.dy = at.y;
    event.mi.dwFlags = what;
    event.mi.mouseData = data;
    input(event);
}

/// In pixels of the screen.
inline void movePointer(POINT to) {
    const auto share = [](LONG pixel, int pixels) { return (pixel * 65536 + pixels - 1) / pixels; };
    mouseInput(MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE,
               {share(to.x, GetSystemMetrics(SM_CXSCREEN)), share(to.y, GetSystemMetrics(SM_CYSCREEN))});
}

inline void key(WORD code, bool isDown, DWORD more = 0) {
    INPUT event{};
    event.type = INPUT_KEYBOARD;
    event.ki.wVk = code;
    event.ki.wScan = static_cast<WORD>(MapVirtualKeyW(code, MAPVK_VK_TO_VSC));
    event.ki.dwFlags = (isDown ? 0 : KEYEVENTF_KEYUP) | more;
    input(event);
}

/// A key that is held for a while.
class HeldKey {
public:
    explicit HeldKey(WORD code, DWORD more = 0) : code_(code), more_(more) { key(code_, true, more_); }
    ~HeldKey() { key(code_, false, more_); }
    HeldKey(const HeldKey&) = delete;
    HeldKey& operator=(const HeldKey&) = delete;

private:
    WORD code_;
    DWORD more_;
};

}  // namespace marnoth::test
