#pragma once

#include <map>
#include <string>

#include "platform/linux/X11Headers.h"

namespace marnoth {

/// A connection to the display of our own: a plug-in's page never uses its host's.
///
/// What goes wrong on it ends nobody's program: a request about a window that is gone is passed over, and a
/// server that is gone makes the connection lost. Errors on other connections go where they went before. One
/// thread; several connections may be on different ones.
class X11Display {
public:
    /// That of the environment. Throws `std::runtime_error`, with a sentence for the user, when there is none
    /// or it shows fewer than 16 million colours.
    X11Display();
    ~X11Display();
    X11Display(const X11Display&) = delete;
    X11Display& operator=(const X11Display&) = delete;

    ::Display* get() const { return display_; }
    ::Window root() const { return DefaultRootWindow(display_); }
    ::Visual* visual() const { return DefaultVisual(display_, DefaultScreen(display_)); }
    int depth() const { return DefaultDepth(display_, DefaultScreen(display_)); }
    Atom atom(const std::string& name);
    /// The server doesn't answer any more: nothing is shown, and nothing comes.
    bool isLost() const { return lost_; }
    /// How many pixels of the screen a pixel of the page should have, by the resolution that the user's
    /// settings tell for texts: 96 dots to the inch are 1 (`wholeScale`).
    int wantedScale() const;

private:
    ::Display* const display_;
    std::map<std::string, Atom> atoms_;
    bool lost_ = false;
};

}  // namespace marnoth
