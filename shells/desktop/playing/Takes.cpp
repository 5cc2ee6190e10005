#include "shells/desktop/playing/Takes.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "shellkit/text/InstrumentText.h"
#include "shells/desktop/playing/MusicFolder.h"

namespace marnoth {

namespace fs = std::filesystem;

std::string newTakeName() {
    std::error_code ignored;
    const fs::path folder = musicFolder() / "Marnoth";
    fs::create_directories(folder, ignored);
    for (int number = 1;; ++number) {
        const std::string name = "take-" + std::to_string(number) + ".wav";
        // One that grows beside its name is another program's, or was left in a crash.
        if (!fs::exists(folder / name, ignored) && !fs::exists(folder / (name + ".part"), ignored))
            return utf8FromPath(folder / name);
    }
}

std::string shortName(const std::string& file) {
    const char* const home = std::getenv("HOME");
    const std::string folder = home && *home == '/' ? std::string(home) + "/" : "";
    return !folder.empty() && file.starts_with(folder) ? "~/" + file.substr(folder.size()) : file;
}

}  // namespace marnoth
