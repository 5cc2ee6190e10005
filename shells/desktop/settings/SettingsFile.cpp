#include "shells/desktop/settings/SettingsFile.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>

#include "platform/files/FileSystem.h"
#include "platform/files/Links.h"
#include "platform/files/TemporaryFile.h"
#include "shellkit/text/InstrumentText.h"
#include "shells/desktop/settings/SettingsText.h"

namespace marnoth {

namespace {

namespace fs = std::filesystem;

/// No settings are as long, in bytes.
constexpr std::uintmax_t kLongestSettings = 1 << 20;

/// Nothing when it can't be read.
std::optional<std::string> contentOf(const fs::path& file) {
    std::error_code error;
    if (!fs::is_regular_file(file, error) || fs::file_size(file, error) > kLongestSettings) return {};
    std::ifstream in(file, std::ios::binary);
    if (!in) return {};
    std::string text{std::istreambuf_iterator<char>(in), {}};
    return in.bad() ? std::nullopt : std::optional(std::move(text));
}

/// Renames it to the first free name beside; empty when that can't be.
fs::path asideOf(const fs::path& file) {
    std::error_code error;
    for (int number = 1;; ++number) {
        fs::path aside = file;
        aside += ".damaged-" + std::to_string(number);
        if (fs::exists(fs::symlink_status(aside, error))) continue;
        fs::rename(file, aside, error);
        return error ? fs::path() : aside;
    }
}

}  // namespace

fs::path settingsFolder() {
    if (const char* const told = std::getenv("XDG_CONFIG_HOME"); told && *told == '/')
        return fs::path(told) / "marnoth";
    const char* const home = std::getenv("HOME");
    return home && *home == '/' ? fs::path(home) / ".config/marnoth" : fs::path();
}

SettingsFile::SettingsFile(const fs::path& folder) {
    if (folder.empty()) return;
    // Who keeps settings elsewhere and links to them goes on doing so.
    file_ = behindLinks(folder / "settings");
    readFile();
}

void SettingsFile::readFile() {
    std::error_code error;
    wasThere_ = fs::exists(fs::symlink_status(file_, error));
    if (!wasThere_) return;
    const std::string name = utf8FromPath(file_);
    const std::optional<std::string> text = contentOf(file_);
    if (!text) {
        mayWrite_ = false;
        troubles_.push_back("The settings in " + name + " can't be read; the usual ones hold.");
    } else if (!isText(*text)) {
        const fs::path aside = asideOf(file_);
        mayWrite_ = !aside.empty();
        troubles_.push_back("The settings are damaged; the usual ones hold. The file is kept" +
                            (mayWrite_ ? " as " + utf8FromPath(aside) : std::string()) + ".");
    } else {
        const ReadSettings read = readSettings(*text);
        known_ = read.settings;
        for (const std::string& line : read.notUnderstood)
            troubles_.push_back("The settings say \"" + line + "\", which can't be; the usual value holds.");
    }
}

std::string SettingsFile::write(const DesktopSettings& settings) {
    if (file_.empty() || !mayWrite_ || (wasThere_ && settings == known_)) return {};
    // Another program may have written since.
    const std::string present = contentOf(file_).value_or("");
    if (!replaceFile(withSettings(isText(present) ? present : "", known_, settings))) {
        mayWrite_ = false;
        return "Settings can't be kept in " + utf8FromPath(file_.parent_path()) + ".";
    }
    known_ = settings;
    wasThere_ = true;
    return {};
}

bool SettingsFile::replaceFile(const std::string& text) {
    std::error_code error;
    fs::create_directories(file_.parent_path(), error);
    if (fs::exists(file_, error) && !mayBeWritten(file_)) return false;
    const std::unique_ptr<TemporaryFile> beside = TemporaryFile::makeIn(file_.parent_path());
    if (!beside) return false;
    std::unique_ptr<ByteStream> bytes = beside->takeBytes();
    const auto length = static_cast<std::int64_t>(text.size());
    const bool isWhole = bytes->write(text.data(), length) && bytes->sync();
    bytes.reset();
    return isWhole && beside->becomes(file_);
}

}  // namespace marnoth
