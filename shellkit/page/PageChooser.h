#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/drawing/FileChooser.h"
#include "shellkit/page/FileDialog.h"

namespace marnoth {

/// Asks for files by a dialog of our own, drawn over the page: where the system has none, and in programs
/// that nothing may be brought into. The window's thread.
class PageChooser final : public FileChooser {
public:
    /// Folders that a user reaches at once beside his own, those of other questions for one.
    using MorePlaces = std::function<std::vector<FilePlace>()>;

    /// `font` and `listener` outlive it; without a listener no file can be heard.
    explicit PageChooser(Font& font, FileListener* listener = nullptr, MorePlaces more = {})
        : font_(font), listener_(listener), more_(std::move(more)) {}
    ~PageChooser() override { cancel(); }

    void ask(const FileQuestion& question, AskingWindow& window,
             std::function<void(FileAnswer)> then) override;
    void cancel() override;

private:
    std::vector<FilePlace> places() const;
    /// Takes the dialog off the page. It lives on until the next one goes: it may have called.
    void close();

    Font& font_;
    FileListener* const listener_;
    const MorePlaces more_;
    AskingWindow* window_ = nullptr;  ///< while the dialog is open
    std::unique_ptr<FileDialog> dialog_;
    std::unique_ptr<FileDialog> former_;
};

}  // namespace marnoth
