#include "project/ProjectBackup.h"

#include <fstream>
#include <system_error>

#include "platform/bytes/RiffStream.h"

namespace marnoth {
namespace {

namespace fs = std::filesystem;

bool isFile(const fs::path& path) {
    std::error_code error;
    return fs::is_regular_file(path, error);
}

/// A save that didn't finish leaves a file whose header doesn't tell its size.
bool isWhole(const fs::path& path) {
    RiffStream file;
    ChunkInfo form;
    if (file.open(path, FileMode::read) || file.descend(form)) return false;
    std::error_code error;
    const std::uintmax_t bytes = fs::file_size(path, error);
    return !error && form.ckid == kRiffId && bytes == kChunkHeaderBytes + std::uintmax_t{form.cksize};
}

/// Renaming needs rights to the folder alone: those to the file itself are tested separately.
bool mayBeWritten(const fs::path& path) {
    return std::fstream(path, std::ios::in | std::ios::out | std::ios::binary).is_open();
}

fs::path behindLinks(const fs::path& name) {
    std::error_code error;
    if (!fs::is_symlink(name, error)) return name;
    fs::path real = fs::canonical(name, error);
    return error ? name : real;
}

}  // namespace

ProjectBackup::ProjectBackup(const fs::path& name) : target_(behindLinks(name)), backup_(target_) {
    backup_ += ".bak";
}

bool ProjectBackup::setAside() {
    if (!isFile(target_)) return true;
    if (!mayBeWritten(target_)) return false;
    kept_ = isFile(backup_) && !isWhole(target_);
    if (kept_) return true;
    std::error_code error;
    fs::rename(target_, backup_, error);
    moved_ = !error;
    return moved_;
}

void ProjectBackup::putBack() {
    std::error_code ignored;
    if (moved_) fs::rename(backup_, target_, ignored);
    moved_ = false;
}

void ProjectBackup::passPermissions() const {
    std::error_code error;
    if (!moved_) return;
    const fs::perms before = fs::status(backup_, error).permissions();
    if (!error) fs::permissions(target_, before, error);
}

void ProjectBackup::drop() {
    std::error_code ignored;
    if (moved_ || kept_) fs::remove(backup_, ignored);
}

}  // namespace marnoth
