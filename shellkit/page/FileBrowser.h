#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/drawing/FileChooser.h"
#include "shellkit/page/FileFilter.h"
#include "shellkit/page/FolderList.h"

namespace marnoth {

/// What a dialog of files knows, without its looks: the folder that is shown, the entry that is lit in it,
/// and what becomes of a name. Texts are UTF-8.
class FileBrowser {
public:
    /// Begins in the question's folder, or in the first of `places` that is there.
    FileBrowser(const FileQuestion& question, const std::vector<std::string>& places);

    const FileFilter& filter() const { return filter_; }
    bool saves() const { return kind_ == FileKind::save; }
    const std::vector<FolderList::Entry>& entries() const { return list_.entries; }
    std::string folder() const;
    /// A sentence for the user about what was done last; empty when all is well.
    const std::string& trouble() const { return trouble_; }

    /// A folder by its full path. One that can't be read is shown without entries.
    void enter(const std::filesystem::path& folder);
    /// The folder above, with the one that was left lit.
    void goUp();

    /// The entry that is lit; nothing when none is.
    std::optional<std::size_t> lit() const { return lit_; }
    void light(std::optional<std::size_t> entry);
    /// The lit entry's full path; nothing when none is lit, or a folder.
    std::optional<std::string> litFile() const;
    /// The full path of the file that a name, read as `accept` reads it, stands for; nothing when none is
    /// there.
    std::optional<std::string> fileNamed(const std::string& name) const;
    /// Lights the first entry that begins with `name`, large letters as small ones; none when none does.
    void lightByName(const std::string& name);
    /// `name` with all that the entries which begin with it have in common.
    std::string completed(const std::string& name) const;

    /// What a name stands for once it is accepted.
    struct Result {
        enum class Kind {
            nothing,  ///< it was a folder, which is shown now, or something is in `trouble`
            file,
            replaces,  ///< a new file over one that is there
        };
        Kind kind = Kind::nothing;
        std::string file;  ///< full path
    };
    /// `name` counts from the folder that is shown, unless it is a full path or begins with "~/".
    Result accept(const std::string& name);

private:
    std::filesystem::path pathOf(const std::string& name) const;
    Result acceptOpen(const std::filesystem::path& path);
    Result acceptSave(const std::filesystem::path& path);
    Result refuse(std::string why);

    const FileFilter filter_;
    const FileKind kind_;
    std::filesystem::path folder_;
    FolderList list_;
    std::optional<std::size_t> lit_;
    std::string trouble_;
};

}  // namespace marnoth
