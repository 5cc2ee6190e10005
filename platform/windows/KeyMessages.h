#pragma once

#include "platform/windows/CharacterJoiner.h"
#include "platform/windows/KeyboardHold.h"
#include "platform/windows/WindowMessage.h"

namespace marnoth {

/// The modifiers at the time of the message that is being answered. The third-level key of many keyboards
/// comes as control and alt, and is neither.
Modifiers heldModifiers();

/// Tells a page what its user does with the keyboard, and when that is lost. What the page throws goes to the
/// caller. One thread.
class KeyMessages {
public:
    /// `keyboard` is that of the same window, and outlives this.
    KeyMessages(KeyboardHold& keyboard, PageListener listener)
        : keyboard_(keyboard), listener_(std::move(listener)) {}

    MessageAnswer answer(HWND window, const WindowMessage& message);

private:
    MessageAnswer answerFocus(HWND window, const WindowMessage& message);
    void down(const WindowMessage& message);
    void up(const WindowMessage& message);
    void character(const WindowMessage& message);
    void timer(HWND window);

    KeyboardHold& keyboard_;
    const PageListener listener_;
    CharacterJoiner joiner_;
};

}  // namespace marnoth
