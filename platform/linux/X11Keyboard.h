#pragma once

#include <string>

#include "platform/linux/X11Display.h"

namespace marnoth {

/// What is typed into a window: keys, and through the user's input method the characters that they make. One
/// thread.
class X11Keyboard {
public:
    /// `display` outlives it. Without an input method, as in the "C" locale, keys still make the characters
    /// that stand on them.
    X11Keyboard(X11Display& display, ::Window window);
    ~X11Keyboard();
    X11Keyboard(const X11Keyboard&) = delete;
    X11Keyboard& operator=(const X11Keyboard&) = delete;

    /// True for an event that is the input method's own, as all keys are while one composes a character.
    bool keeps(XEvent& event) { return XFilterEvent(&event, kXNone) != 0; }
    /// The virtual key, in the codes of `PageKey`; 0 for none.
    int keyOf(XKeyEvent& event) const;
    /// What a key that goes down types: mostly one character, none, or what an input method composed.
    std::u32string charactersOf(XKeyEvent& event);
    void focus(bool here);

private:
    std::string utf8Of(XKeyEvent& event);

    X11Display& display_;
    XIM method_;
    XIC context_ = nullptr;
};

}  // namespace marnoth
