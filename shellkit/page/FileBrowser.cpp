#include "shellkit/page/FileBrowser.h"

#include <algorithm>
#include <system_error>

#include "platform/text/Text.h"
#include "shellkit/page/UserPlaces.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

namespace fs = std::filesystem;

bool isThere(const std::string& folder) {
    std::error_code ignored;
    return !folder.empty() && fs::is_directory(pathFromUtf8(folder), ignored);
}

fs::path firstThatIsThere(const std::string& wanted, const std::vector<std::string>& places) {
    if (isThere(wanted)) return pathFromUtf8(wanted);
    const auto found = std::ranges::find_if(places, isThere);
    return found == places.end() ? fs::path("/") : pathFromUtf8(*found);
}

char smallLetter(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool beginsWith(std::string_view name, std::string_view begin) {
    return name.size() >= begin.size() &&
           std::ranges::equal(name.substr(0, begin.size()), begin, {}, smallLetter, smallLetter);
}

/// How many bytes both begin with, whole characters.
std::size_t inCommon(std::string_view a, std::string_view b) {
    std::size_t same = 0;
    while (same < a.size() && same < b.size() && a[same] == b[same]) ++same;
    while (same > 0 && !isUtf8(a.substr(0, same))) --same;
    return same;
}

}  // namespace

FileBrowser::FileBrowser(const FileQuestion& question, const std::vector<std::string>& places)
    : filter_(question.filter), kind_(question.kind) {
    enter(firstThatIsThere(question.folder, places));
}

std::string FileBrowser::folder() const {
    return utf8FromPath(folder_);
}

void FileBrowser::enter(const fs::path& folder) {
    folder_ = folder.lexically_normal();
    // A slash at the end counts as an empty name.
    if (!folder_.has_filename() && folder_.has_relative_path()) folder_ = folder_.parent_path();
    list_ = readFolder(folder_, filter_);
    lit_.reset();
    trouble_ = list_.trouble;
}

void FileBrowser::goUp() {
    const std::string left = utf8FromPath(folder_.filename());
    if (folder_ == folder_.parent_path()) return;
    enter(folder_.parent_path());
    const auto found = std::ranges::find(list_.entries, left, &FolderList::Entry::name);
    if (found != list_.entries.end()) lit_ = static_cast<std::size_t>(found - list_.entries.begin());
}

void FileBrowser::light(std::optional<std::size_t> entry) {
    lit_ = entry && *entry < list_.entries.size() ? entry : std::nullopt;
    trouble_.clear();
}

std::optional<std::string> FileBrowser::litFile() const {
    if (!lit_ || list_.entries[*lit_].isFolder) return {};
    return utf8FromPath(folder_ / pathFromUtf8(list_.entries[*lit_].name));
}

void FileBrowser::lightByName(const std::string& name) {
    lit_.reset();
    trouble_.clear();
    if (name.empty()) return;
    const auto found = std::ranges::find_if(
        list_.entries, [&](const FolderList::Entry& entry) { return beginsWith(entry.name, name); });
    if (found != list_.entries.end()) lit_ = static_cast<std::size_t>(found - list_.entries.begin());
}

std::string FileBrowser::completed(const std::string& name) const {
    std::optional<std::string> common;
    for (const FolderList::Entry& entry : list_.entries)
        if (beginsWith(entry.name, name))
            common = common ? common->substr(0, inCommon(*common, entry.name)) : entry.name;
    return common && common->size() > name.size() ? *common : name;
}

fs::path FileBrowser::pathOf(const std::string& name) const {
    if (name == "~" || name.starts_with("~/")) {
        const std::string home = homeFolder();
        if (!home.empty()) return pathFromUtf8(home + name.substr(1));
    }
    return folder_ / pathFromUtf8(name);
}

std::optional<std::string> FileBrowser::fileNamed(const std::string& name) const {
    const fs::path path = pathOf(name).lexically_normal();
    std::error_code ignored;
    if (!fs::is_regular_file(path, ignored)) return {};
    return utf8FromPath(path);
}

FileBrowser::Result FileBrowser::refuse(std::string why) {
    trouble_ = std::move(why);
    return {};
}

FileBrowser::Result FileBrowser::accept(const std::string& name) {
    if (name.empty()) return {};
    const fs::path path = pathOf(name).lexically_normal();
    std::error_code failure;
    const bool isFolder = fs::is_directory(path, failure);
    if (failure && failure != std::errc::no_such_file_or_directory && failure != std::errc::not_a_directory)
        return refuse(failure.message() + ".");
    if (isFolder) {
        enter(path);
        return {};
    }
    return saves() ? acceptSave(path) : acceptOpen(path);
}

FileBrowser::Result FileBrowser::acceptOpen(const fs::path& path) {
    std::error_code ignored;
    if (fs::is_regular_file(path, ignored)) return {Result::Kind::file, utf8FromPath(path)};
    const std::string name = utf8FromPath(path.filename());
    // The name that was typed is enough while it is the beginning of one.
    if (!lit_ || path.parent_path() != folder_ || !beginsWith(list_.entries[*lit_].name, name))
        return refuse("There is no file " + name + ".");
    if (const auto file = litFile()) return {Result::Kind::file, *file};
    enter(folder_ / pathFromUtf8(list_.entries[*lit_].name));
    return {};
}

FileBrowser::Result FileBrowser::acceptSave(const fs::path& path) {
    if (path.filename().empty()) return refuse("There is no folder of that name.");
    std::error_code ignored;
    if (!fs::is_directory(path.parent_path(), ignored))
        return refuse("There is no folder " + utf8FromPath(path.parent_path()) + ".");
    const std::string file = filter_.withExtension(utf8FromPath(path));
    const bool isNew = !fs::exists(pathFromUtf8(file), ignored);
    return {isNew ? Result::Kind::file : Result::Kind::replaces, file};
}

}  // namespace marnoth
