#include "shells/desktop/playing/MusicFolder.h"

#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

namespace marnoth {

namespace {

namespace fs = std::filesystem;

fs::path absoluteFrom(const char* variable) {
    const char* const told = std::getenv(variable);
    return told && *told == '/' ? fs::path(told) : fs::path();
}

/// What stands between quotes, as a shell reads it.
std::string unquoted(std::string_view text) {
    std::string value;
    for (std::size_t i = 0; i < text.size() && text[i] != '"'; ++i) {
        if (text[i] == '\\' && i + 1 < text.size()) ++i;
        value += text[i];
    }
    return value;
}

}  // namespace

std::optional<fs::path> musicFolderIn(std::istream& userFolders, const fs::path& home) {
    constexpr std::string_view kStart = "XDG_MUSIC_DIR=\"", kHome = "$HOME/";
    for (std::string line; std::getline(userFolders, line);) {
        if (!line.starts_with(kStart)) continue;
        const std::string value = unquoted(std::string_view(line).substr(kStart.size()));
        // The home folder itself stands for none.
        if (value.starts_with(kHome) && value.size() > kHome.size()) return home / value.substr(kHome.size());
        if (value.starts_with('/')) return value;
    }
    return {};
}

fs::path musicFolder() {
    if (fs::path told = absoluteFrom("XDG_MUSIC_DIR"); !told.empty()) return told;
    const fs::path home = absoluteFrom("HOME");
    if (home.empty()) return fs::current_path();
    const fs::path config = absoluteFrom("XDG_CONFIG_HOME");
    std::ifstream userFolders((config.empty() ? home / ".config" : config) / "user-dirs.dirs");
    return musicFolderIn(userFolders, home).value_or(home / "Music");
}

}  // namespace marnoth
