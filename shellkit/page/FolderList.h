#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "shellkit/page/FileFilter.h"

namespace marnoth {

/// What a dialog shows of a folder: its folders, then those of its files that fit a filter, each in the order
/// of their names, large letters as small ones. Hidden ones aren't among them, nor what is neither, nor names
/// that aren't UTF-8, which nobody could say.
struct FolderList {
    struct Entry {
        std::string name;  ///< UTF-8
        bool isFolder = false;
    };
    /// More are left out.
    static constexpr std::size_t kMost = 20'000;

    std::vector<Entry> entries;
    std::string trouble;  ///< a sentence for the user where the folder can't be read, or not whole
};

FolderList readFolder(const std::filesystem::path& folder, const FileFilter& filter);

}  // namespace marnoth
