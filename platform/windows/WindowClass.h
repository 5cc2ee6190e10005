#pragma once

#include "platform/com/Com.h"

namespace marnoth {

/// Who answers the messages of a window. It is asked from the window's making to its end, on the window's
/// thread.
class MessageTaker {
public:
    /// Throws nothing: above it is the system.
    virtual LRESULT take(HWND window, UINT message, WPARAM first, LPARAM second) = 0;

protected:
    ~MessageTaker() = default;
};

/// Makes a child window of the class that this module registers for it, hidden, and without a ground of its
/// own. `place` in pixels of the parent. `taker` outlives the window. Throws `std::system_error`. Any thread.
HWND makeChildWindow(HWND parent, const RECT& place, MessageTaker& taker);

/// Takes the class back, which must not outlive the module: another one at its place couldn't register it.
/// No window of it may be open. Nothing without a class.
void unregisterChildWindows() noexcept;

}  // namespace marnoth
