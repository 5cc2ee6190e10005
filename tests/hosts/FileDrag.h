#pragma once

#include <X11/Xlib.h>
#include <poll.h>

#include <array>
#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "tests/hosts/x11/SelectionAnswer.h"

namespace marnoth::test {

/// A drag of files onto a window as a file manager does it (freedesktop.org, "Drag-and-Drop Protocol for the
/// X Window System", version 5), over a connection to the display of its own. One thread.
class FileDrag {
public:
    /// `list` is what is handed over as text/uri-list. `std::runtime_error` without a display.
    FileDrag(::Window target, std::string list) : target_(target), list_(std::move(list)) {
        if (!display_) throw std::runtime_error("there is no display");
        source_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 1, 1, 0, 0, 0);
        XSetSelectionOwner(display_, atom("XdndSelection"), source_, CurrentTime);
    }
    ~FileDrag() { XCloseDisplay(display_); }
    FileDrag(const FileDrag&) = delete;
    FileDrag& operator=(const FileDrag&) = delete;

    /// A pixel of the window, counted from the screen's corner.
    std::pair<int, int> onScreen(int x, int y) {
        std::pair<int, int> place;
        ::Window child = 0;
        XTranslateCoordinates(display_, target_, DefaultRootWindow(display_), x, y, &place.first,
                              &place.second, &child);
        return place;
    }
    void enter() { send("XdndEnter", {kVersion << 24, static_cast<long>(atom("text/uri-list")), 0, 0}); }
    void leave() { send("XdndLeave", {}); }
    /// Whether a drop there, counted from the screen's corner, is wanted; nothing without an answer.
    std::optional<bool> over(int x, int y) {
        send("XdndPosition",
             {0, (static_cast<long>(x) << 16) | y, CurrentTime, static_cast<long>(atom("XdndActionCopy"))});
        return answer("XdndStatus");
    }
    /// Whether the files were taken; nothing without an answer.
    std::optional<bool> drop() {
        send("XdndDrop", {0, CurrentTime, 0, 0});
        return answer("XdndFinished");
    }

private:
    using Clock = std::chrono::steady_clock;

    static constexpr long kVersion = 5;
    static constexpr std::chrono::seconds kPatience{10};

    Atom atom(const char* name) { return XInternAtom(display_, name, False); }

    /// What stands behind the source in a message.
    void send(const char* type, const std::array<long, 4>& words) {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = target_;
        event.xclient.message_type = atom(type);
        event.xclient.format = 32;
        event.xclient.data.l[0] = static_cast<long>(source_);
        for (std::size_t i = 0; i < words.size(); ++i) event.xclient.data.l[i + 1] = words[i];
        XSendEvent(display_, target_, False, NoEventMask, &event);
        XFlush(display_);
    }

    void handOver(const XSelectionRequestEvent& request) {
        XChangeProperty(display_, request.requestor, request.property, request.target, 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(list_.data()), static_cast<int>(list_.size()));
        answerSelection(display_, request);
    }

    /// The yes or no of the target's message; meanwhile it may ask for the files.
    std::optional<bool> answer(const char* type) {
        const Atom wanted = atom(type);
        for (const auto end = Clock::now() + kPatience; Clock::now() < end;) {
            while (XPending(display_) > 0) {
                XEvent event;
                XNextEvent(display_, &event);
                if (event.type == SelectionRequest) handOver(event.xselectionrequest);
                if (event.type == ClientMessage && event.xclient.message_type == wanted)
                    return (event.xclient.data.l[1] & 1) != 0;
            }
            pollfd connection{ConnectionNumber(display_), POLLIN, 0};
            poll(&connection, 1, 100);
        }
        return {};
    }

    ::Display* const display_ = XOpenDisplay(nullptr);
    const ::Window target_;
    const std::string list_;
    ::Window source_ = 0;
};

}  // namespace marnoth::test
