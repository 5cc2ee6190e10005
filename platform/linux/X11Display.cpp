#include "platform/linux/X11Display.h"

#include <bit>
#include <cstdlib>
#include <mutex>
#include <set>
#include <stdexcept>

#include "platform/linux/WholeScale.h"

namespace marnoth {

namespace {

/// Xlib has one error handler for all connections of the process: ours stands before the one that was there,
/// for as long as one of ours is open, and answers for ours alone.
class ErrorFilter {
public:
    static ErrorFilter& instance() {
        static ErrorFilter filter;
        return filter;
    }
    void add(::Display* display) {
        const std::lock_guard lock(mutex_);
        if (ours_.empty()) before_ = XSetErrorHandler(passOver);
        ours_.insert(display);
    }
    void remove(::Display* display) {
        const std::lock_guard lock(mutex_);
        ours_.erase(display);
        if (!ours_.empty()) return;
        // Whoever has put his own before it since keeps it.
        const XErrorHandler present = XSetErrorHandler(before_);
        if (present != passOver) XSetErrorHandler(present);
    }

private:
    static int passOver(::Display* display, XErrorEvent* event) {
        ErrorFilter& filter = instance();
        XErrorHandler before = nullptr;
        {
            const std::lock_guard lock(filter.mutex_);
            if (filter.ours_.contains(display)) return 0;
            before = filter.before_;
        }
        return before ? before(display, event) : 0;
    }

    std::mutex mutex_;
    std::set<::Display*> ours_;
    XErrorHandler before_ = nullptr;
};

::Display* opened() {
    if (::Display* const display = XOpenDisplay(nullptr)) return display;
    const char* const name = std::getenv("DISPLAY");
    throw std::runtime_error(name && *name ? "The display \"" + std::string(name) + "\" can't be opened."
                                           : "There is no display: the environment names none in DISPLAY.");
}

bool hasFullColours(::Display* display) {
    const ::Visual& visual = *DefaultVisual(display, DefaultScreen(display));
    return std::popcount(visual.red_mask) >= 8 && std::popcount(visual.green_mask) >= 8 &&
           std::popcount(visual.blue_mask) >= 8;
}

}  // namespace

X11Display::X11Display() : display_(opened()) {
    if (!hasFullColours(display_)) {
        XCloseDisplay(display_);
        throw std::runtime_error("The display shows fewer than 16 million colours.");
    }
    ErrorFilter::instance().add(display_);
    XSetIOErrorExitHandler(
        display_, [](::Display*, void* lost) { *static_cast<bool*>(lost) = true; }, &lost_);
    XrmInitialize();
}

X11Display::~X11Display() {
    XCloseDisplay(display_);
    ErrorFilter::instance().remove(display_);
}

Atom X11Display::atom(const std::string& name) {
    const auto found = atoms_.find(name);
    if (found != atoms_.end()) return found->second;
    return atoms_[name] = XInternAtom(display_, name.c_str(), kXFalse);
}

int X11Display::wantedScale() const {
    constexpr double kPlainResolution = 96;
    const char* const settings = XResourceManagerString(display_);
    if (!settings) return 1;
    const XrmDatabase database = XrmGetStringDatabase(settings);
    char* type = nullptr;
    XrmValue value{};
    const bool isTold = XrmGetResource(database, "Xft.dpi", "Xft.Dpi", &type, &value) != 0;
    const double resolution = isTold ? std::strtod(value.addr, nullptr) : kPlainResolution;
    XrmDestroyDatabase(database);
    return wholeScale(resolution / kPlainResolution);
}

}  // namespace marnoth
