#include "shells/desktop/projects/RecoveryFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <system_error>
#include <utility>

namespace marnoth {

namespace {

namespace fs = std::filesystem;

/// Programs that run at once.
constexpr int kMostPlaces = 16;
constexpr const char* kState = ".state";
constexpr const char* kLock = ".lock";

/// Whole and on the disk before it takes the name.
bool writeWhole(const fs::path& file, const std::vector<std::uint8_t>& bytes) {
    fs::path beside = file;
    beside += ".part";
    const int out = open(beside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (out < 0) return false;
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = ::write(out, bytes.data() + done, bytes.size() - done);
        if (count <= 0) break;
        done += static_cast<std::size_t>(count);
    }
    const bool isWhole = done == bytes.size() && fsync(out) == 0;
    close(out);
    std::error_code error;
    if (isWhole) fs::rename(beside, file, error);
    if (!isWhole || error) fs::remove(beside, error);
    return isWhole && !error;
}

}  // namespace

fs::path stateFolder() {
    if (const char* const told = std::getenv("XDG_STATE_HOME"); told && *told == '/')
        return fs::path(told) / "marnoth";
    const char* const home = std::getenv("HOME");
    return home && *home == '/' ? fs::path(home) / ".local/state/marnoth" : fs::path();
}

RecoveryFile::RecoveryFile(const fs::path& folder) : folder_(folder) {
    if (folder.empty()) return;
    std::error_code ignored;
    fs::create_directories(folder, ignored);
    // One that was left comes before an empty place.
    takeAnyPlace(true);
    if (lock_ >= 0)
        found_ = path_;
    else
        takeAnyPlace(false);
}

void RecoveryFile::takeAnyPlace(bool wantsLeft) {
    for (int number = 1; number <= kMostPlaces; ++number) {
        // Asked before the lock is made too: a place that nobody had leaves nothing in the folder.
        if (isLeft(number) != wantsLeft || !takePlace(number)) continue;
        if (isLeft(number) == wantsLeft) return;
        close(std::exchange(lock_, -1));
    }
    path_.clear();
}

fs::path RecoveryFile::place(int number, const char* ending) const {
    return folder_ / ("recovery-" + std::to_string(number) + ending);
}

bool RecoveryFile::isLeft(int number) const {
    std::error_code ignored;
    return fs::exists(place(number, kState), ignored);
}

bool RecoveryFile::takePlace(int number) {
    const int lock = open(place(number, kLock).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (lock < 0) return false;
    if (flock(lock, LOCK_EX | LOCK_NB) != 0) {
        close(lock);
        return false;
    }
    lock_ = lock;
    path_ = place(number, kState);
    return true;
}

RecoveryFile::~RecoveryFile() {
    finish();
    if (lock_ < 0) return;
    std::error_code ignored;
    // What nobody has answered for is left for the next time.
    if (!found_ && !keeps_) fs::remove(path_, ignored);
    close(lock_);
}

void RecoveryFile::finish() {
    if (writer_.joinable()) writer_.join();
}

fs::path RecoveryFile::putAside() {
    std::error_code ignored;
    fs::path aside;
    for (int number = 1; aside.empty() || fs::exists(aside, ignored); ++number)
        aside = path_.parent_path() / ("unreadable-" + std::to_string(number) + ".state");
    fs::rename(path_, aside, ignored);
    found_.reset();
    return aside;
}

void RecoveryFile::leaveFound() {
    if (!found_) return;
    found_.reset();
    // Held until another is taken, which can't be this one then.
    const int former = std::exchange(lock_, -1);
    takeAnyPlace(false);
    close(former);
}

bool RecoveryFile::write(Take take) {
    if (path_.empty() || found_ || writes_) return false;
    finish();
    writes_ = true;
    writer_ = std::thread([this, take = std::move(take)] {
        if (const auto bytes = take()) writeWhole(path_, *bytes);
        writes_ = false;
    });
    return true;
}

void RecoveryFile::discard() {
    finish();
    std::error_code ignored;
    if (!path_.empty() && !found_) fs::remove(path_, ignored);
}

}  // namespace marnoth
