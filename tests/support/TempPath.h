#pragma once

#include <atomic>
#include <filesystem>
#include <random>
#include <string>
#include <system_error>

#include "platform/text/Text.h"

namespace marnoth::test {

/// A path in the system's temporary folder that nobody else has. What stands there is removed at the end.
class TempPath {
public:
    explicit TempPath(const std::filesystem::path& extension = {})
        : path_((std::filesystem::temp_directory_path() / uniqueName()) += extension),
          name_(systemFromWide(wide())) {}
    TempPath(TempPath&& other) noexcept : path_(std::move(other.path_)), name_(std::move(other.name_)) {
        other.path_.clear();
    }
    TempPath(const TempPath&) = delete;
    TempPath& operator=(const TempPath&) = delete;
    ~TempPath() {
        std::error_code ignored;
        if (!path_.empty()) std::filesystem::remove(path_, ignored);
    }

    const std::filesystem::path& path() const { return path_; }
    /// In the system's code page, as the interfaces take it.
    const std::string& string() const { return name_; }
    const char* c_str() const { return name_.c_str(); }
    std::wstring wide() const { return wideFromPath(path_); }

private:
    static std::string uniqueName() {
        static const unsigned run = std::random_device{}();
        static std::atomic<int> count{0};
        return "marnoth-test-" + std::to_string(run) + "-" + std::to_string(++count);
    }

    std::filesystem::path path_;
    std::string name_;
};

}  // namespace marnoth::test
