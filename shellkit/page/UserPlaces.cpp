#include "shellkit/page/UserPlaces.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

namespace fs = std::filesystem;

std::string environmentFolder(const char* name) {
    const char* const value = std::getenv(name);
    return value && pathFromUtf8(value).is_absolute() ? value : "";
}

bool isFolder(const std::string& folder) {
    std::error_code ignored;
    return !folder.empty() && fs::is_directory(pathFromUtf8(folder), ignored);
}

/// The line is XDG_MUSIC_DIR="$HOME/Music" or with a full path.
std::string toldByDesktop(const std::string& home) {
    const std::string told = environmentFolder("XDG_CONFIG_HOME");
    std::ifstream file(pathFromUtf8((told.empty() ? home + "/.config" : told) + "/user-dirs.dirs"));
    constexpr std::string_view kBegin = "XDG_MUSIC_DIR=\"";
    constexpr std::string_view kHome = "$HOME";
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with(kBegin) || !line.ends_with('"') || line.size() <= kBegin.size()) continue;
        line = line.substr(kBegin.size(), line.size() - kBegin.size() - 1);
        return line.starts_with(kHome) ? home + line.substr(kHome.size()) : line;
    }
    return {};
}

}  // namespace

std::string homeFolder() {
#ifdef _WIN32
    return environmentFolder("USERPROFILE");
#else
    return environmentFolder("HOME");
#endif
}

std::string musicFolderOfUser() {
    const std::string home = homeFolder();
    for (const std::string& folder :
         {environmentFolder("XDG_MUSIC_DIR"), toldByDesktop(home), home.empty() ? "" : home + "/Music"})
        if (isFolder(folder)) return folder;
    return {};
}

std::string folderToBeginIn() {
    const std::string music = musicFolderOfUser();
    return music.empty() ? homeFolder() : music;
}

std::vector<FilePlace> userPlaces() {
    std::vector<FilePlace> places;
    for (const FilePlace& place : {FilePlace{"Home", homeFolder()}, FilePlace{"Music", musicFolderOfUser()},
                                   FilePlace{"Computer", utf8FromPath(fs::current_path().root_path())}})
        if (isFolder(place.folder)) places.push_back(place);
    return places;
}

}  // namespace marnoth
