#include "project/ProjectBackup.h"

#include <system_error>

#include "platform/bytes/RiffStream.h"
#include "platform/files/Links.h"

namespace marnoth {
namespace {

namespace fs = std::filesystem;

bool isFile(const fs::path& path) {
    std::error_code error;
    return fs::is_regular_file(path, error);
}

}  // namespace

bool isSavedWhole(const fs::path& path) {
    RiffStream file;
    ChunkInfo form;
    if (file.open(path, FileMode::read) || file.descend(form)) return false;
    std::error_code error;
    const std::uintmax_t bytes = fs::file_size(path, error);
    return !error && form.ckid == kRiffId && bytes == kChunkHeaderBytes + std::uintmax_t{form.cksize};
}

fs::path backupOf(const fs::path& path) {
    fs::path backup = behindLinks(path);
    return backup += ".bak";
}

ProjectBackup::ProjectBackup(const fs::path& name, FileSystem& files)
    : files_(files), target_(behindLinks(name)), backup_(backupOf(target_)) {}

bool ProjectBackup::setAside() {
    if (!isFile(target_)) return true;
    if (!mayBeWritten(target_)) return false;
    kept_ = isFile(backup_) && !isSavedWhole(target_);
    if (kept_) return true;
    moved_ = files_.rename(target_, backup_);
    if (moved_ && files_.syncFolderOf(target_)) return true;
    putBack();
    return false;
}

void ProjectBackup::putBack() {
    if (moved_ && files_.rename(backup_, target_)) files_.syncFolderOf(target_);
    moved_ = false;
}

bool ProjectBackup::begun() const {
    std::error_code error;
    if (moved_) {
        const fs::perms before = fs::status(backup_, error).permissions();
        if (!error) fs::permissions(target_, before, error);
    }
    return files_.syncFolderOf(target_);
}

void ProjectBackup::drop() {
    if ((moved_ || kept_) && files_.remove(backup_)) files_.syncFolderOf(backup_);
}

}  // namespace marnoth
