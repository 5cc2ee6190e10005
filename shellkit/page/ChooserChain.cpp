#include "shellkit/page/ChooserChain.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "shellkit/page/FileFilter.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

std::string named(const FileQuestion& question, const std::string& file) {
    if (question.kind == FileKind::open) return file;
    std::string complete = FileFilter(question.filter).withExtension(file);
    std::error_code ignored;
    return complete != file && std::filesystem::exists(pathFromUtf8(complete), ignored) ? file : complete;
}

/// Empty for a folder that isn't there, or not any more.
std::string ifThere(const std::string& folder) {
    std::error_code ignored;
    return std::filesystem::is_directory(pathFromUtf8(folder), ignored) ? folder : std::string();
}

}  // namespace

void ChooserChain::ask(const FileQuestion& question, AskingWindow& window,
                       std::function<void(FileAnswer)> then) {
    question_ = question;
    if (question_.folder.empty()) question_.folder = ifThere(folders[question_.filter]);
    window_ = &window;
    then_ = std::move(then);
    askNext();
}

void ChooserChain::cancel() {
    if (std::exchange(then_, {}) && !choosers_.empty()) choosers_.front()->cancel();
}

std::vector<FilePlace> ChooserChain::places() const {
    std::vector<FilePlace> places;
    for (const auto& [filter, folder] : folders)
        if (!ifThere(folder).empty())
            places.push_back({utf8FromPath(pathFromUtf8(folder).filename()), folder});
    return places;
}

void ChooserChain::askNext() {
    if (choosers_.empty()) return std::exchange(then_, {})({.wasAsked = false, .file = {}});
    choosers_.front()->ask(question_, *window_, [this](FileAnswer answer) { answered(std::move(answer)); });
}

void ChooserChain::answered(FileAnswer answer) {
    if (!answer.wasAsked) {
        choosers_.erase(choosers_.begin());
        return askNext();
    }
    if (answer.file) {
        answer.file = named(question_, *answer.file);
        folders[question_.filter] = utf8FromPath(pathFromUtf8(*answer.file).parent_path());
    }
    std::exchange(then_, {})(std::move(answer));
}

}  // namespace marnoth
