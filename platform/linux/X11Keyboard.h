#pragma once

#include <string>

#include "platform/linux/X11Display.h"

namespace marnoth {

/// What is typed into a window: keys, and through the user's input method the characters that they make. One
/// thread.
class X11Keyboard {
public:
    /// `display` outlives it. Without an input method, as where its server is gone, keys still compose what
    /// the locale composes; without a locale they make the characters that stand on them.
    X11Keyboard(X11Display& display, ::Window window);
    ~X11Keyboard();
    X11Keyboard(const X11Keyboard&) = delete;
    X11Keyboard& operator=(const X11Keyboard&) = delete;

    /// True for an event that is the input method's own, as all keys are while one composes a character.
    bool keeps(XEvent& event);
    /// The virtual key, in the codes of `PageKey`; 0 for none.
    int keyOf(XKeyEvent& event) const;
    /// What a key that goes down types: mostly one character, none, or what an input method composed.
    std::u32string charactersOf(XKeyEvent& event);
    void focus(bool here);

private:
    void open();
    bool openMethod();
    bool openContext();
    static void methodGone(XIM, XPointer self, XPointer);
    std::string utf8Of(XKeyEvent& event);

    X11Display& display_;
    const ::Window window_;
    XIM method_ = nullptr;
    XIC context_ = nullptr;
    bool hasFocus_ = false;
    bool isServerGone_ = false;  ///< the input method's, in the middle of the work
};

}  // namespace marnoth
