#include "tests/hosts/robot/UserHands.h"

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <poll.h>

#include <optional>
#include <stdexcept>
#include <thread>

namespace marnoth::robot {

namespace {

using Clock = std::chrono::steady_clock;

bool hasName(::Display* display, ::Window window, const std::string& name) {
    XClassHint hint{};
    if (!XGetClassHint(display, window, &hint)) return false;
    const bool is = hint.res_name && name == hint.res_name;
    XFree(hint.res_name);
    XFree(hint.res_class);
    XWindowAttributes attributes{};
    return is && XGetWindowAttributes(display, window, &attributes) && attributes.map_state == IsViewable;
}

std::optional<::Window> findBelow(::Display* display, ::Window parent, const std::string& name) {
    ::Window root = 0, above = 0;
    ::Window* children = nullptr;
    unsigned count = 0;
    if (!XQueryTree(display, parent, &root, &above, &children, &count)) return {};
    const std::vector<::Window> windows(children, children + count);
    if (children) XFree(children);
    for (const ::Window window : windows) {
        if (hasName(display, window, name)) return window;
        if (const auto found = findBelow(display, window, name)) return found;
    }
    return {};
}

long readNumber(::Display* display, ::Window window, const char* property) {
    Atom type = 0;
    int format = 0;
    unsigned long count = 0, rest = 0;
    unsigned char* bytes = nullptr;
    XGetWindowProperty(display, window, XInternAtom(display, property, False), 0, 1, False, XA_CARDINAL,
                       &type, &format, &count, &rest, &bytes);
    const long number = bytes && count == 1 ? *reinterpret_cast<const long*>(bytes) : 0;
    if (bytes) XFree(bytes);
    return number;
}

/// Whether the key makes the sign only with Shift.
bool needsShift(::Display* display, KeyCode code, KeySym sign) {
    return XkbKeycodeToKeysym(display, code, 0, 0) != sign && XkbKeycodeToKeysym(display, code, 0, 1) == sign;
}

}  // namespace

struct UserHands::Display {
    ::Display* get = nullptr;
    ::Window window = 0;

    ~Display() {
        if (get) XCloseDisplay(get);
    }
    ::Window root() const { return DefaultRootWindow(get); }
    Atom atom(const char* name) const { return XInternAtom(get, name, False); }
    KeyCode codeOf(const std::string& key) const {
        const KeySym sign = XStringToKeysym(key.c_str());
        const KeyCode code = sign == NoSymbol ? KeyCode{0} : XKeysymToKeycode(get, sign);
        if (code == 0) throw std::runtime_error("the keyboard has no " + key);
        return code;
    }
};

UserHands::UserHands(const std::string& name, std::chrono::seconds patience)
    : display_(std::make_unique<Display>()) {
    // A window that goes while it is asked for something is found out by `answers`.
    XSetErrorHandler([](::Display*, XErrorEvent*) { return 0; });
    display_->get = XOpenDisplay(nullptr);
    if (!display_->get) throw std::runtime_error("there is no display");
    const auto end = Clock::now() + patience;
    for (;;) {
        if (const auto found = findBelow(display_->get, display_->root(), name)) {
            display_->window = *found;
            break;
        }
        if (Clock::now() > end) throw std::runtime_error("there is no window of " + name);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    // There answers to window managers arrive.
    XSelectInput(display_->get, display_->root(), SubstructureNotifyMask);
}

UserHands::~UserHands() {
    letGo();
}

int UserHands::processId() const {
    return static_cast<int>(readNumber(display_->get, display_->window, "_NET_WM_PID"));
}

unsigned long UserHands::window() const {
    return display_->window;
}

void UserHands::sync() {
    XSync(display_->get, False);
}

Point UserHands::onScreen(Point at) {
    Point place;
    ::Window child = 0;
    if (!XTranslateCoordinates(display_->get, display_->window, display_->root(), at.x, at.y, &place.x,
                               &place.y, &child))
        throw std::runtime_error("the window is gone");
    return place;
}

void UserHands::moveTo(Point at) {
    const Point place = onScreen(at);
    XTestFakeMotionEvent(display_->get, -1, place.x, place.y, CurrentTime);
    sync();
}

void UserHands::press(Button button) {
    heldButtons_.insert(button);
    XTestFakeButtonEvent(display_->get, static_cast<unsigned>(button), True, CurrentTime);
    sync();
}

void UserHands::release(Button button) {
    heldButtons_.erase(button);
    XTestFakeButtonEvent(display_->get, static_cast<unsigned>(button), False, CurrentTime);
    sync();
}

void UserHands::click(Point at, Button button) {
    moveTo(at);
    press(button);
    release(button);
}

void UserHands::keyDown(const std::string& key) {
    const KeyCode code = display_->codeOf(key);
    heldKeys_.insert(code);
    XTestFakeKeyEvent(display_->get, code, True, CurrentTime);
    sync();
}

void UserHands::keyUp(const std::string& key) {
    const KeyCode code = display_->codeOf(key);
    heldKeys_.erase(code);
    XTestFakeKeyEvent(display_->get, code, False, CurrentTime);
    sync();
}

void UserHands::tap(const std::string& key) {
    const bool shifted = needsShift(display_->get, display_->codeOf(key), XStringToKeysym(key.c_str()));
    if (shifted) keyDown("Shift_L");
    keyDown(key);
    keyUp(key);
    if (shifted) keyUp("Shift_L");
}

void UserHands::type(const std::string& text) {
    for (const char sign : text) {
        // The signs of ASCII are their own numbers.
        const char* const name = XKeysymToString(static_cast<KeySym>(static_cast<unsigned char>(sign)));
        if (!name) throw std::runtime_error("what is typed isn't ASCII");
        tap(name);
    }
}

void UserHands::letGo() {
    for (const unsigned code : heldKeys_) XTestFakeKeyEvent(display_->get, code, False, CurrentTime);
    for (const Button button : heldButtons_)
        XTestFakeButtonEvent(display_->get, static_cast<unsigned>(button), False, CurrentTime);
    heldKeys_.clear();
    heldButtons_.clear();
    sync();
}

void UserHands::sendToWindow(unsigned long what, unsigned long detail) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = display_->window;
    event.xclient.message_type = display_->atom("WM_PROTOCOLS");
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(what);
    event.xclient.data.l[1] = static_cast<long>(detail);
    event.xclient.data.l[2] = static_cast<long>(display_->window);
    XSendEvent(display_->get, display_->window, False, NoEventMask, &event);
    sync();
}

bool UserHands::answers(std::chrono::seconds patience) {
    const Atom ping = display_->atom("_NET_WM_PING");
    const auto end = Clock::now() + patience;
    sendToWindow(ping, ++question_);
    while (Clock::now() < end) {
        while (XPending(display_->get) > 0) {
            XEvent event;
            XNextEvent(display_->get, &event);
            if (event.type == ClientMessage && static_cast<Atom>(event.xclient.data.l[0]) == ping &&
                static_cast<unsigned long>(event.xclient.data.l[1]) == question_)
                return true;
        }
        pollfd connection{ConnectionNumber(display_->get), POLLIN, 0};
        poll(&connection, 1, 100);
    }
    return false;
}

std::uint64_t UserHands::look(const Rect& place) {
    XImage* const image = XGetImage(display_->get, display_->window, place.left, place.top,
                                    static_cast<unsigned>(place.width()),
                                    static_cast<unsigned>(place.height()), AllPlanes, ZPixmap);
    if (!image) throw std::runtime_error("the window can't be looked at");
    std::uint64_t hash = 14695981039346656037u;
    for (int y = 0; y < place.height(); ++y)
        for (int x = 0; x < place.width(); ++x) hash = (hash ^ XGetPixel(image, x, y)) * 1099511628211u;
    XDestroyImage(image);
    return hash;
}

void UserHands::askToClose() {
    sendToWindow(display_->atom("WM_DELETE_WINDOW"), CurrentTime);
}

}  // namespace marnoth::robot
