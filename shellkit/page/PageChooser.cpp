#include "shellkit/page/PageChooser.h"

#include <algorithm>
#include <utility>

#include "platform/drawing/Font.h"

namespace marnoth {

void PageChooser::ask(const FileQuestion& question, AskingWindow& window,
                      std::function<void(FileAnswer)> then) {
    cancel();
    FileQuestion begun = question;
    if (begun.folder.empty()) begun.folder = folderToBeginIn();
    const auto answered = [this, then = std::move(then)](std::optional<std::string> file) {
        const auto answer = then;
        close();
        answer({.wasAsked = true, .file = std::move(file)});
    };
    dialog_ = std::make_unique<FileDialog>(FileDialog::Setup{begun, places(), listener_, window.room()},
                                           font_, window.clipboardWindow(), answered);
    window_ = &window;
    window.showOver(dialog_.get());
}

void PageChooser::cancel() {
    if (window_) close();
}

void PageChooser::close() {
    std::exchange(window_, nullptr)->showOver(nullptr);
    former_ = std::move(dialog_);
}

std::vector<FilePlace> PageChooser::places() const {
    std::vector<FilePlace> places = userPlaces();
    if (!more_) return places;
    for (FilePlace& more : more_())
        if (std::ranges::find(places, more.folder, &FilePlace::folder) == places.end())
            places.push_back(std::move(more));
    return places;
}

}  // namespace marnoth
