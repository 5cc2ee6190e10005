#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <system_error>

#include "shellkit/text/InstrumentText.h"
#include "support/TempPath.h"

namespace marnoth::test {

/// A folder of its own that goes at the end with all that is in it.
class TempFolder {
public:
    TempFolder() { std::filesystem::create_directories(place_.path()); }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(place_.path(), ignored);
    }

    std::filesystem::path operator/(const std::filesystem::path& name) const { return place_.path() / name; }
    /// The name of something in it as shells take it.
    std::string name(const std::string& file) const {
        return utf8FromPath(place_.path() / pathFromUtf8(file));
    }

private:
    TempPath place_;
};

inline void writeText(const std::filesystem::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

inline std::string readText(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

}  // namespace marnoth::test
