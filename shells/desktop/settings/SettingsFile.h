#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "shells/desktop/settings/DesktopSettings.h"

namespace marnoth {

/// The settings in a file of the user's. It is written whole beside its name and then takes that, so that
/// programs which run at once don't damage it; each writes what its own user has changed. The window's
/// thread.
class SettingsFile {
public:
    /// "settings" in `folder`, which is made when something is written; nothing is kept without a folder.
    explicit SettingsFile(const std::filesystem::path& folder);

    /// Whether there was one: on the first start there is none.
    bool wasThere() const { return wasThere_; }
    /// As they were read: the usual ones where there is no file or one that can't be read.
    const DesktopSettings& read() const { return known_; }
    /// What there is to say about it, sentences for the user. One that is no text is put aside, and said to
    /// be.
    const std::vector<std::string>& troubles() const { return troubles_; }

    /// Writes what has changed since it was read or written. A sentence, once, when it can't be; else empty.
    std::string write(const DesktopSettings& settings);

private:
    void readFile();
    bool replaceFile(const std::string& text);

    std::filesystem::path file_;
    DesktopSettings known_;
    std::vector<std::string> troubles_;
    bool wasThere_ = false;
    bool mayWrite_ = true;
};

/// The user's folder for settings: "marnoth" in the configuration folder of freedesktop.org's base
/// directories.
std::filesystem::path settingsFolder();

}  // namespace marnoth
