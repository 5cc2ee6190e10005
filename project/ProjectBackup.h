#pragma once

#include <filesystem>

#include "platform/files/FileSystem.h"

namespace marnoth {

/// Keeps what stands under a name while something new is written there: a file is renamed to the same name
/// with ".bak" behind it. Nothing that was once saved whole is lost, wherever the writing ends, even with the
/// process or with the power: each change of names is on the medium before the next one.
///
/// A backup that an earlier save left behind stays when the file beside it is the unfinished one of that
/// save: then it, not the file, is what was last saved. Only regular files are ever moved or removed; a link
/// is followed to its file. One thread at a time for each name.
class ProjectBackup {
public:
    /// `files` outlives it.
    ProjectBackup(const std::filesystem::path& name, FileSystem& files);

    /// Where to write: what `name` links to, or `name` itself.
    const std::filesystem::path& target() const { return target_; }

    /// Makes the name free. False, with nothing touched, when what stands there can't be moved or mayn't be
    /// written over.
    bool setAside();
    /// The new file couldn't even be begun: everything back to its place.
    void putBack();
    /// The new file has just been begun: gives it the permissions of the one before. False when the medium
    /// doesn't take its name.
    bool begun() const;
    /// What was written is whole, and the medium has it: the backup goes.
    void drop();

private:
    FileSystem& files_;
    std::filesystem::path target_;
    std::filesystem::path backup_;
    bool moved_ = false;  ///< the file that was there has become the backup
    bool kept_ = false;   ///< the backup is an earlier save's
};

/// Whether a save of a project there came to its end, by the form's header, which gets its size last.
bool isSavedWhole(const std::filesystem::path& path);

/// Where the project that a file holds is kept while another is saved there.
std::filesystem::path backupOf(const std::filesystem::path& path);

}  // namespace marnoth
