#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/drawing/FileChooser.h"
#include "shellkit/page/UserPlaces.h"

namespace marnoth {

/// Asks for files by the first of several dialogs that comes up. One that doesn't isn't tried again: nobody
/// waits for it twice. A dialog begins in the folder of the file that was chosen last under the same filter,
/// as long as that is there.
///
/// A new file gets its filter's extension where its user typed none, unless there is a file of that name
/// already, over which nobody was asked. The window's thread.
class ChooserChain final : public FileChooser {
public:
    /// In the order in which they are tried; not owned, they outlive it.
    explicit ChooserChain(std::vector<FileChooser*> choosers) : choosers_(std::move(choosers)) {}

    void ask(const FileQuestion& question, AskingWindow& window,
             std::function<void(FileAnswer)> then) override;
    void cancel() override;

    /// The folders from which files were chosen, those of them that are there, by their own names.
    std::vector<FilePlace> places() const;

    /// By filter: the folders in which dialogs begin, full paths in UTF-8.
    std::map<std::string, std::string> folders;

private:
    void askNext();
    void answered(FileAnswer answer);

    std::vector<FileChooser*> choosers_;
    FileQuestion question_;
    AskingWindow* window_ = nullptr;
    std::function<void(FileAnswer)> then_;  ///< while the first of `choosers_` asks
};

}  // namespace marnoth
