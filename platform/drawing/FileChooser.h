#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/drawing/PageOverlay.h"
#include "platform/drawing/PageWindow.h"

namespace marnoth {

struct FileQuestion {
    std::string filter;  ///< "Name (*.ext)|*.ext||"
    FileKind kind = FileKind::open;
    std::string folder;  ///< to begin in: a full path in UTF-8, or empty for none in particular
};

struct FileAnswer {
    /// False where nobody could be asked: no dialog came up, or it went without the user's doing.
    bool wasAsked = true;
    std::optional<std::string> file;  ///< a full path in UTF-8; nothing when the user cancelled
};

/// The window for which a file is chosen, as a dialog sees it. The window's thread.
class AskingWindow {
public:
    virtual ~AskingWindow() = default;

    /// The system's number of the window to stand before.
    virtual unsigned long id() const = 0;
    /// The room that a dialog over the page has.
    virtual Rect room() const = 0;
    /// `dialog` lies over the page from now on, until null does.
    virtual void showOver(PageOverlay* dialog) = 0;
    /// Whose clipboard a dialog over the page uses.
    virtual PageWindow& clipboardWindow() = 0;
};

/// How a user chooses a file where a window has no dialog of its own. It never waits. The window's thread.
class FileChooser {
public:
    virtual ~FileChooser() = default;

    /// `then` is called once: when the user has answered, or when nobody can be asked, which may be within
    /// this call. One at a time. `window` outlives the question.
    virtual void ask(const FileQuestion& question, AskingWindow& window,
                     std::function<void(FileAnswer)> then) = 0;
    /// Takes the question back; `then` isn't called.
    virtual void cancel() = 0;
};

}  // namespace marnoth
