#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/drawing/PageWindow.h"

namespace marnoth {

/// How a user chooses a file where a window has no dialog of its own. It never waits. The window's thread.
class FileChooser {
public:
    virtual ~FileChooser() = default;

    /// `filter` is "Name (*.ext)|*.ext||"; `window` is the system's number of the window to stand before.
    /// `then` is called once, with a full path in UTF-8 or with nothing: when the user has chosen, or within
    /// this call when nobody can be asked. One at a time.
    virtual void ask(std::string_view filter, FileKind kind, unsigned long window,
                     std::function<void(std::optional<std::string>)> then) = 0;
    /// Takes the question back; `then` isn't called.
    virtual void cancel() = 0;
};

}  // namespace marnoth
