#include "platform/linux/X11Manners.h"

#include <unistd.h>

#include <array>
#include <vector>

#include "platform/linux/X11Property.h"

namespace marnoth {

X11Manners::X11Manners(X11Display& display, ::Window window, const std::string& title)
    : display_(display), window_(window) {
    ::Display* const d = display_.get();
    XWMHints hints{};
    hints.flags = InputHint | StateHint;
    hints.input = kXTrue;
    hints.initial_state = NormalState;
    std::string name = "marnoth";
    std::string kind = "Marnoth";
    XClassHint group{name.data(), kind.data()};
    XSetWMProperties(d, window_, nullptr, nullptr, nullptr, 0, nullptr, &hints, &group);
    std::array<Atom, 2> answered{display_.atom("WM_DELETE_WINDOW"), display_.atom("_NET_WM_PING")};
    XSetWMProtocols(d, window_, answered.data(), static_cast<int>(answered.size()));
    const long process = getpid();
    XChangeProperty(d, window_, display_.atom("_NET_WM_PID"), XA_CARDINAL, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(&process), 1);
    setTitle(title);
}

void X11Manners::setIcon(std::span<const IconPicture> icon) {
    std::vector<unsigned long> words;
    for (const IconPicture& picture : icon) {
        words.insert(words.end(), 2, picture.size);
        words.insert(words.end(), picture.pixels.begin(), picture.pixels.end());
    }
    XChangeProperty(display_.get(), window_, display_.atom("_NET_WM_ICON"), XA_CARDINAL, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(words.data()), static_cast<int>(words.size()));
}

void X11Manners::setSize(X11Display& display, ::Window window, int width, int height) {
    XSizeHints size{};
    size.flags = PMinSize | PMaxSize;
    size.min_width = size.max_width = width;
    size.min_height = size.max_height = height;
    XSetWMNormalHints(display.get(), window, &size);
}

void X11Manners::setTitle(const std::string& title) {
    const Atom utf8 = display_.atom("UTF8_STRING");
    writeText(display_, window_, display_.atom("_NET_WM_NAME"), utf8, title);
    // Managers that know only the older name take what it has of Latin-1, or of UTF-8.
    writeText(display_, window_, XA_WM_NAME, utf8, title);
}

bool X11Manners::wantsToClose(const XClientMessageEvent& message) {
    if (message.message_type != display_.atom("WM_PROTOCOLS")) return false;
    const auto what = static_cast<Atom>(message.data.l[0]);
    if (what == display_.atom("_NET_WM_PING")) {
        XEvent answer{};
        answer.xclient = message;
        answer.xclient.window = display_.root();
        XSendEvent(display_.get(), display_.root(), kXFalse,
                   SubstructureNotifyMask | SubstructureRedirectMask, &answer);
    }
    return what == display_.atom("WM_DELETE_WINDOW");
}

}  // namespace marnoth
