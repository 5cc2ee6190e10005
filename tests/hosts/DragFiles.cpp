// Drags files onto a window as a file manager does (freedesktop.org, "Drag-and-Drop Protocol for the X Window
// System", version 5):
//   drag_files [--leave-first] WINDOW X Y LIST
// over the window's pixel X, Y, with what the file LIST holds as the list of addresses (text/uri-list). With
// --leave-first the drag goes out of the window once and comes in again. Tells what came back: "refused" or
// "accepted", then "done" or "not done", or "no answer".

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <poll.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds kPatience{5};

class Drag {
public:
    Drag(Window target, int x, int y, std::string list) : target_(target), list_(std::move(list)) {
        Window child = 0;
        XTranslateCoordinates(display_, target_, DefaultRootWindow(display_), x, y, &x_, &y_, &child);
        XSetSelectionOwner(display_, atom("XdndSelection"), source_, CurrentTime);
    }

    void enter() { send("XdndEnter", 5 << 24, static_cast<long>(atom("text/uri-list")), 0, 0); }
    void leave() { send("XdndLeave", 0, 0, 0, 0); }
    /// Whether a drop there is wanted; nothing without an answer.
    std::optional<bool> over() {
        send("XdndPosition", 0, static_cast<long>(x_) << 16 | y_, CurrentTime,
             static_cast<long>(atom("XdndActionCopy")));
        const auto answer = await("XdndStatus");
        return answer ? std::optional((answer->data.l[1] & 1) != 0) : std::nullopt;
    }
    /// Whether the files were taken; nothing without an answer.
    std::optional<bool> drop() {
        send("XdndDrop", 0, CurrentTime, 0, 0);
        const auto answer = await("XdndFinished");
        return answer ? std::optional((answer->data.l[1] & 1) != 0) : std::nullopt;
    }

private:
    static Display* open() {
        Display* const display = XOpenDisplay(nullptr);
        if (!display) std::exit(2);
        return display;
    }
    Atom atom(const char* name) { return XInternAtom(display_, name, False); }

    void send(const char* type, long first, long second, long third, long fourth) {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = target_;
        event.xclient.message_type = atom(type);
        event.xclient.format = 32;
        const long words[] = {static_cast<long>(source_), first, second, third, fourth};
        for (int i = 0; i < 5; ++i) event.xclient.data.l[i] = words[i];
        XSendEvent(display_, target_, False, NoEventMask, &event);
        XFlush(display_);
    }

    void serve(const XSelectionRequestEvent& request) {
        XChangeProperty(display_, request.requestor, request.property, request.target, 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(list_.data()), static_cast<int>(list_.size()));
        XEvent answer{};
        answer.xselection.type = SelectionNotify;
        answer.xselection.requestor = request.requestor;
        answer.xselection.selection = request.selection;
        answer.xselection.target = request.target;
        answer.xselection.time = request.time;
        answer.xselection.property = request.property;
        XSendEvent(display_, request.requestor, False, NoEventMask, &answer);
        XFlush(display_);
    }

    std::optional<XClientMessageEvent> await(const char* type) {
        const auto end = Clock::now() + kPatience;
        while (Clock::now() < end) {
            while (XPending(display_) > 0) {
                XEvent event;
                XNextEvent(display_, &event);
                if (event.type == SelectionRequest) serve(event.xselectionrequest);
                if (event.type == ClientMessage && event.xclient.message_type == atom(type))
                    return event.xclient;
            }
            pollfd wait{ConnectionNumber(display_), POLLIN, 0};
            poll(&wait, 1, 100);
        }
        return {};
    }

    Display* const display_ = open();
    const Window source_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 1, 1, 0, 0, 0);
    const Window target_;
    const std::string list_;
    int x_ = 0;
    int y_ = 0;
};

std::string contentsOf(const char* file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void tell(std::optional<bool> answer, const char* yes, const char* no) {
    std::puts(!answer ? "no answer" : *answer ? yes : no);
    if (!answer) std::exit(1);
}

}  // namespace

int main(int count, char** words) {
    const bool leavesFirst = count > 1 && std::string_view(words[1]) == "--leave-first";
    if (leavesFirst) ++words, --count;
    if (count != 5) return 2;
    Drag drag(std::strtoul(words[1], nullptr, 0), std::atoi(words[2]), std::atoi(words[3]),
              contentsOf(words[4]));
    if (leavesFirst) {
        drag.enter();
        tell(drag.over(), "accepted", "refused");
        drag.leave();
    }
    drag.enter();
    const auto wanted = drag.over();
    tell(wanted, "accepted", "refused");
    if (!*wanted) {
        drag.leave();
        return 0;
    }
    tell(drag.drop(), "done", "not done");
}
