#include "platform/files/TemporaryFile.h"

#include <random>
#include <string>
#include <system_error>
#include <utility>

#include "platform/files/FileSystem.h"

namespace marnoth {

namespace fs = std::filesystem;

std::unique_ptr<TemporaryFile> TemporaryFile::make(const fs::path& path) {
    std::unique_ptr<TemporaryFile> file(new TemporaryFile);
    // Copied while there is no file yet that could be left behind.
    fs::path name = path;
    const SignalPause pause;
    file->bytes_ = openFileBytes(path, FileMode::createNew);
    if (!file->bytes_) return nullptr;
    file->leftover_.emplace(std::move(name));
    return file;
}

std::unique_ptr<TemporaryFile> TemporaryFile::makeAnywhere() {
    std::error_code error;
    const fs::path folder = fs::temp_directory_path(error);
    return error ? nullptr : makeIn(folder);
}

std::unique_ptr<TemporaryFile> TemporaryFile::makeIn(const fs::path& folder) {
    std::random_device random;
    return make(folder / ("marnoth-" + std::to_string(random()) + "-" + std::to_string(random()) + ".part"));
}

TemporaryFile::~TemporaryFile() {
    if (!leftover_) return;
    bytes_.reset();
    systemFiles().remove(path());
}

bool TemporaryFile::becomes(const fs::path& name) {
    // Behind the rename the old name may be another process's.
    const SignalPause pause;
    if (!systemFiles().rename(path(), name)) return false;
    leftover_.reset();
    return true;
}

}  // namespace marnoth
