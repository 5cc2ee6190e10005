#pragma once

#include "platform/windows/KeyboardHold.h"
#include "platform/windows/PointerHold.h"
#include "platform/windows/WheelParts.h"
#include "platform/windows/WindowMessage.h"

namespace marnoth {

/// Tells a page what its user does with the mouse. What the page throws goes to the caller. One thread.
class MouseMessages {
public:
    /// `pointer` and `keyboard` are those of the same window, and outlive this.
    MouseMessages(PointerHold& pointer, KeyboardHold& keyboard, PageListener listener)
        : pointer_(pointer), keyboard_(keyboard), listener_(std::move(listener)) {}

    MessageAnswer answer(HWND window, const WindowMessage& message);

private:
    using Event = void (PageEvents::*)(Point, Modifiers);

    MessageAnswer answerButtons(HWND window, const WindowMessage& message);
    MessageAnswer answerPointer(HWND window, const WindowMessage& message);
    void press(HWND window, Event event, LPARAM at);
    void tell(HWND window, Event event, LPARAM at);
    void moved(HWND window, const WindowMessage& message);
    void noticeLostRelease(WPARAM buttons);
    void contextMenu(HWND window, LPARAM at);
    MessageAnswer wheel(HWND window, WheelAxis axis, WheelParts& parts, const WindowMessage& message);
    void captureChanged(HWND window, LPARAM to);

    PointerHold& pointer_;
    KeyboardHold& keyboard_;
    const PageListener listener_;
    bool isLeftDown_ = false;  ///< as far as was heard
    WheelParts vertical_;
    WheelParts horizontal_;
};

}  // namespace marnoth
