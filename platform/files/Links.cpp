#include "platform/files/Links.h"

#include <system_error>

namespace marnoth {
namespace {

namespace fs = std::filesystem;

/// As many as systems follow.
constexpr int kMostLinks = 40;

}  // namespace

fs::path behindLinks(const fs::path& name) {
    std::error_code error;
    fs::path file = name;
    for (int i = 0; i < kMostLinks; ++i) {
        if (!fs::is_symlink(file, error)) return file;
        file = file.parent_path() / fs::read_symlink(file, error);
        if (error) break;
    }
    return name;
}

}  // namespace marnoth
