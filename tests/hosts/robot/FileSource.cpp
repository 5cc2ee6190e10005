#include "tests/hosts/robot/FileSource.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <poll.h>

#include <array>
#include <chrono>
#include <optional>
#include <stdexcept>

namespace marnoth::robot {

namespace {

using Clock = std::chrono::steady_clock;

constexpr long kVersion = 5;
constexpr std::chrono::seconds kPatience{10};

class Source {
public:
    Source(::Window target, const std::vector<std::string>& paths) : target_(target) {
        if (!display_) throw std::runtime_error("there is no display");
        for (const std::string& path : paths) uris_ += "file://" + path + "\r\n";
        window_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 1, 1, 0, 0, 0);
        XSetSelectionOwner(display_, atom("XdndSelection"), window_, CurrentTime);
    }
    ~Source() { XCloseDisplay(display_); }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    bool drop(Point at) {
        const auto source = static_cast<long>(window_);
        send("XdndEnter", {source, kVersion << 24, static_cast<long>(atom("text/uri-list")), 0, 0});
        send("XdndPosition", {source, 0, (static_cast<long>(at.x) << 16) | at.y, CurrentTime,
                              static_cast<long>(atom("XdndActionCopy"))});
        if (!(waitFor("XdndStatus").data.l[1] & 1)) {
            send("XdndLeave", {source, 0, 0, 0, 0});
            return false;
        }
        send("XdndDrop", {source, 0, CurrentTime, 0, 0});
        return (waitFor("XdndFinished").data.l[1] & 1) != 0;
    }

private:
    Atom atom(const char* name) { return XInternAtom(display_, name, False); }

    void send(const char* what, const std::array<long, 5>& data) {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = target_;
        event.xclient.message_type = atom(what);
        event.xclient.format = 32;
        for (std::size_t i = 0; i < data.size(); ++i) event.xclient.data.l[i] = data[i];
        XSendEvent(display_, target_, False, NoEventMask, &event);
        XFlush(display_);
    }

    void handOver(const XSelectionRequestEvent& request) {
        XChangeProperty(display_, request.requestor, request.property, request.target, 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(uris_.data()), static_cast<int>(uris_.size()));
        XEvent event{};
        event.xselection.type = SelectionNotify;
        event.xselection.requestor = request.requestor;
        event.xselection.selection = request.selection;
        event.xselection.target = request.target;
        event.xselection.property = request.property;
        event.xselection.time = request.time;
        XSendEvent(display_, request.requestor, False, NoEventMask, &event);
        XFlush(display_);
    }

    /// What the target says; meanwhile it may ask for the files.
    XClientMessageEvent waitFor(const char* what) {
        const Atom wanted = atom(what);
        for (const auto end = Clock::now() + kPatience; Clock::now() < end;) {
            while (XPending(display_) > 0) {
                XEvent event;
                XNextEvent(display_, &event);
                if (event.type == SelectionRequest) handOver(event.xselectionrequest);
                if (event.type == ClientMessage && event.xclient.message_type == wanted) return event.xclient;
            }
            pollfd connection{ConnectionNumber(display_), POLLIN, 0};
            poll(&connection, 1, 100);
        }
        throw std::runtime_error(std::string("files were dropped and no ") + what + " came");
    }

    ::Display* const display_ = XOpenDisplay(nullptr);
    const ::Window target_;
    ::Window window_ = 0;
    std::string uris_;
};

}  // namespace

bool dropFiles(unsigned long window, Point at, const std::vector<std::string>& paths) {
    return Source(window, paths).drop(at);
}

}  // namespace marnoth::robot
