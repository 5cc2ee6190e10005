#include "shells/desktop/Takes.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

namespace fs = std::filesystem;

/// What the environment says, else what is usual; else here.
fs::path musicFolder() {
    if (const char* const told = std::getenv("XDG_MUSIC_DIR"); told && *told == '/') return told;
    const char* const home = std::getenv("HOME");
    return home && *home == '/' ? fs::path(home) / "Music" : fs::current_path();
}

}  // namespace

std::string newTakeName() {
    std::error_code ignored;
    const fs::path folder = musicFolder() / "Marnoth";
    fs::create_directories(folder, ignored);
    fs::path file;
    for (int number = 1; file.empty() || fs::exists(file, ignored); ++number)
        file = folder / ("take-" + std::to_string(number) + ".wav");
    return utf8FromPath(file);
}

}  // namespace marnoth
