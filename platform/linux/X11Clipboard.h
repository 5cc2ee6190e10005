#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "platform/linux/X11Display.h"

namespace marnoth {

/// The clipboard as a window has it: text both ways, UTF-8. Whoever has the text hands it over when asked,
/// which may be this window itself, another program, or one that never answers. One thread.
class X11Clipboard {
public:
    using Time = std::chrono::steady_clock::time_point;
    /// How long the owner of a text may take.
    static constexpr std::chrono::seconds kPatience{2};
    /// A longer text counts as none.
    static constexpr std::size_t kLongestText = 1 << 20;

    /// `display` outlives it.
    X11Clipboard(X11Display& display, ::Window window) : display_(display), window_(window) {}

    void offer(std::string text);
    /// `then` gets the text, or an empty one: at once where nobody has to be asked. A question before it that
    /// is still open gets an empty text.
    void read(std::function<void(std::string)> then);
    /// False for an event that is nothing of the clipboard's.
    bool handle(const XEvent& event);
    /// When to call `expire`.
    std::optional<Time> deadline() const { return deadline_; }
    void expire(Time now);

private:
    void ask(Atom target);
    void answered(const XSelectionEvent& event);
    void chunk();
    void finish(std::string text);
    void serve(const XSelectionRequestEvent& request);
    /// True when the text could be put there in the form that is asked for.
    bool put(const XSelectionRequestEvent& request, Atom property);
    Atom clipboard() { return display_.atom("CLIPBOARD"); }
    Atom utf8() { return display_.atom("UTF8_STRING"); }
    Atom inbox() { return display_.atom("MARNOTH_CLIPBOARD"); }

    X11Display& display_;
    const ::Window window_;
    std::optional<std::string> offered_;  ///< while this window has the clipboard
    std::function<void(std::string)> then_;
    Atom asked_ = kXNone;
    std::string incoming_;  ///< of a text that comes in parts
    bool inParts_ = false;
    std::optional<Time> deadline_;
};

}  // namespace marnoth
