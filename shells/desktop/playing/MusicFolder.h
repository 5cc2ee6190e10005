#pragma once

#include <filesystem>
#include <istream>
#include <optional>

namespace marnoth {

/// The folder of the user's music: what the environment's XDG_MUSIC_DIR says, else what the desktop keeps in
/// `user-dirs.dirs` (freedesktop.org's xdg-user-dirs), else "Music" in the home folder; else the present one.
std::filesystem::path musicFolder();

/// What the lines of such a file say of music; nothing where that is no folder beneath or beside `home`.
std::optional<std::filesystem::path> musicFolderIn(std::istream& userFolders,
                                                   const std::filesystem::path& home);

}  // namespace marnoth
