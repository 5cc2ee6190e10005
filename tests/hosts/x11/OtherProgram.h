#pragma once

#include <X11/extensions/XTest.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "platform/linux/X11Headers.h"
#include "tests/hosts/x11/SelectionAnswer.h"

namespace marnoth::test {

/// A program beside the window's, on a connection of its own: its user's hands, a host's window, or somebody
/// else who has the clipboard.
class OtherProgram {
public:
    OtherProgram()
        : display_(XOpenDisplay(nullptr)),
          window_(XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 700, 700, 0, 0, 0)) {
        XSelectInput(display_, window_, KeyPressMask | KeyReleaseMask | PropertyChangeMask | FocusChangeMask);
    }
    ~OtherProgram() { XCloseDisplay(display_); }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

    ::Display* display() const { return display_; }
    ::Window window() const { return window_; }
    Atom atom(const char* name) const { return XInternAtom(display_, name, kXFalse); }
    void show() {
        XMapWindow(display_, window_);
        XSync(display_, kXFalse);
    }
    /// Shown at the screen's corner; none where the display has no such windows.
    ::Window windowOfDepth(int depth) {
        XVisualInfo visual{};
        if (XMatchVisualInfo(display_, DefaultScreen(display_), depth, TrueColor, &visual) == 0)
            return kXNone;
        XSetWindowAttributes wanted{};
        wanted.colormap = XCreateColormap(display_, DefaultRootWindow(display_), visual.visual, AllocNone);
        const ::Window made = XCreateWindow(display_, DefaultRootWindow(display_), 0, 0, 700, 700, 0, depth,
                                            InputOutput, visual.visual, CWColormap | CWBorderPixel, &wanted);
        XMapWindow(display_, made);
        XSync(display_, kXFalse);
        return made;
    }
    void focus(::Window window) {
        XSetInputFocus(display_, window, RevertToParent, CurrentTime);
        XSync(display_, kXFalse);
    }
    void destroyWindow() {
        XDestroyWindow(display_, window_);
        XSync(display_, kXFalse);
    }
    /// The user's resolution, as settings tell it.
    void setResolution(int dotsPerInch) {
        const std::string settings = "Xft.dpi:\t" + std::to_string(dotsPerInch) + "\n";
        XChangeProperty(display_, DefaultRootWindow(display_), XA_RESOURCE_MANAGER, XA_STRING, 8,
                        PropModeReplace, reinterpret_cast<const unsigned char*>(settings.data()),
                        static_cast<int>(settings.size()));
        XSync(display_, kXFalse);
    }
    void key(KeySym symbol, bool down) {
        XTestFakeKeyEvent(display_, XKeysymToKeycode(display_, symbol), down ? kXTrue : kXFalse, CurrentTime);
        XSync(display_, kXFalse);
    }
    void type(KeySym symbol) {
        key(symbol, true);
        key(symbol, false);
    }
    void button(unsigned number) {
        XTestFakeButtonEvent(display_, number, kXTrue, CurrentTime);
        XTestFakeButtonEvent(display_, number, kXFalse, CurrentTime);
        XSync(display_, kXFalse);
    }
    void move(int x, int y) {
        XTestFakeMotionEvent(display_, -1, x, y, CurrentTime);
        XSync(display_, kXFalse);
    }
    /// The next event of a kind, if it has come.
    std::optional<XEvent> next(int type) {
        XEvent event;
        if (XCheckTypedEvent(display_, type, &event) == 0) return {};
        return event;
    }

    void ownClipboard() {
        XSetSelectionOwner(display_, atom("CLIPBOARD"), window_, CurrentTime);
        XSync(display_, kXFalse);
    }
    void answer(const XSelectionRequestEvent& request) { answerSelection(display_, request); }
    void put(::Window window, Atom property, Atom type, int bits, const void* data, std::size_t units) {
        XChangeProperty(display_, window, property, type, bits, PropModeReplace,
                        static_cast<const unsigned char*>(data), static_cast<int>(units));
        XFlush(display_);
    }

private:
    ::Display* const display_;
    const ::Window window_;
};

}  // namespace marnoth::test
