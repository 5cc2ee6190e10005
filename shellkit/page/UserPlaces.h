#pragma once

#include <string>
#include <vector>

namespace marnoth {

/// A folder that a user reaches at once.
struct FilePlace {
    std::string name;    ///< as the user knows it
    std::string folder;  ///< a full path; both in UTF-8
};

/// The user's home; empty when the environment names none.
std::string homeFolder();
/// Where the user's music lies by the environment, by the file `user-dirs.dirs` of his desktop
/// (freedesktop.org, "xdg-user-dirs"), or by its usual name; empty when there is none.
std::string musicFolderOfUser();

/// Where dialogs begin for a user who has chosen nothing yet: among the music, else at home.
std::string folderToBeginIn();

/// Home, music and the whole system, those of them that are there.
std::vector<FilePlace> userPlaces();

}  // namespace marnoth
