#pragma once

#include <span>
#include <string>

#include "platform/drawing/IconPicture.h"
#include "platform/linux/X11Display.h"

namespace marnoth {

/// What a window of its own tells window managers of itself (X.org's ICCCM, freedesktop.org's EWMH): title,
/// icon, class, a size that stays, and that it wants to be asked before it is closed. One thread.
class X11Manners {
public:
    /// `display` outlives it. UTF-8.
    X11Manners(X11Display& display, ::Window window, const std::string& title);

    /// What task bars show; each size is one to choose from.
    void setIcon(std::span<const IconPicture> icon);
    void setTitle(const std::string& title);
    /// The size that stays, in pixels of the screen: for a window of any kind, since hosts look there too.
    static void setSize(X11Display& display, ::Window window, int width, int height);
    /// True when the message is the user's wish to close the window. Whether the program still answers is
    /// answered here.
    bool wantsToClose(const XClientMessageEvent& message);

private:
    X11Display& display_;
    const ::Window window_;
};

}  // namespace marnoth
