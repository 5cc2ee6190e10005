#pragma once

#include <filesystem>

namespace marnoth {

/// Keeps what stands under a name while something new is written there: a file is renamed to the same name
/// with ".bak" behind it. Nothing that was once saved whole is lost, wherever the writing ends, even with the
/// process.
///
/// A backup that an earlier save left behind stays when the file beside it is the unfinished one of that
/// save: then it, not the file, is what was last saved. Only regular files are ever moved or removed; a link
/// is followed to its file. One thread at a time for each name.
class ProjectBackup {
public:
    explicit ProjectBackup(const std::filesystem::path& name);

    /// Where to write: what `name` links to, or `name` itself.
    const std::filesystem::path& target() const { return target_; }

    /// Makes the name free. False, with nothing touched, when what stands there can't be moved or mayn't be
    /// written over.
    bool setAside();
    /// The new file couldn't even be begun: everything back to its place.
    void putBack();
    /// Gives the new file, just begun, the permissions of the one before.
    void passPermissions() const;
    /// What was written is whole: the backup goes.
    void drop();

private:
    std::filesystem::path target_;
    std::filesystem::path backup_;
    bool moved_ = false;  ///< the file that was there has become the backup
    bool kept_ = false;   ///< the backup is an earlier save's
};

}  // namespace marnoth
