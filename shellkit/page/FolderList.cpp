#include "shellkit/page/FolderList.h"

#include <algorithm>
#include <optional>
#include <system_error>

#include "platform/text/Text.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

namespace fs = std::filesystem;

std::string nameOf(const fs::directory_entry& entry) {
#ifdef _WIN32
    return utf8FromPath(entry.path().filename());
#else
    return entry.path().filename().native();
#endif
}

std::optional<FolderList::Entry> shown(const fs::directory_entry& entry, const FileFilter& filter) {
    std::error_code ignored;
    std::string name = nameOf(entry);
    if (name.starts_with('.') || !isUtf8(name)) return {};
    if (entry.is_directory(ignored)) return FolderList::Entry{std::move(name), true};
    if (!filter.matches(name) || !entry.is_regular_file(ignored)) return {};
    return FolderList::Entry{std::move(name), false};
}

/// Other scripts come behind ours.
unsigned char folded(char c) {
    return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
}

bool comesBefore(const FolderList::Entry& a, const FolderList::Entry& b) {
    if (a.isFolder != b.isFolder) return a.isFolder;
    if (std::ranges::equal(a.name, b.name, {}, folded, folded)) return a.name < b.name;
    return std::ranges::lexicographical_compare(a.name, b.name, {}, folded, folded);
}

}  // namespace

FolderList readFolder(const fs::path& folder, const FileFilter& filter) {
    FolderList list;
    std::error_code failure;
    fs::directory_iterator next(folder, failure);
    for (; !failure && next != fs::directory_iterator(); next.increment(failure)) {
        if (list.entries.size() == FolderList::kMost) {
            list.trouble = "The folder holds more than can be shown.";
            break;
        }
        if (auto entry = shown(*next, filter)) list.entries.push_back(std::move(*entry));
    }
    if (failure) list.trouble = "The folder can't be read: " + failure.message() + ".";
    std::ranges::sort(list.entries, comesBefore);
    return list;
}

}  // namespace marnoth
