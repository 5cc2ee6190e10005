#include "platform/files/FileSystem.h"

#include <fstream>
#include <system_error>

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#endif

namespace marnoth {
namespace {

namespace fs = std::filesystem;

fs::path folderOf(const fs::path& path) {
    const fs::path folder = path.parent_path();
    return folder.empty() ? fs::path(".") : folder;
}

#ifdef _WIN32

bool renameFile(const fs::path& from, const fs::path& to) {
    return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

/// The system keeps a journal of names by itself; where a folder can be flushed that is done as well.
bool syncFolder(const fs::path& folder) {
    const HANDLE handle =
        CreateFileW(folder.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return true;
    FlushFileBuffers(handle);
    CloseHandle(handle);
    return true;
}

#else

bool renameFile(const fs::path& from, const fs::path& to) {
    return std::rename(from.c_str(), to.c_str()) == 0;
}

/// A folder that mayn't be read, or whose file system can't sync one by itself: everything is synced.
bool syncEverything() {
    sync();
    return true;
}

bool syncFolder(const fs::path& folder) {
    const int handle = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) return syncEverything();
    const int error = fsync(handle) == 0 ? 0 : errno;
    close(handle);
    return error == 0 || (error == EINVAL && syncEverything());
}

#endif

class SystemFiles final : public FileSystem {
public:
    std::unique_ptr<ByteStream> open(const fs::path& path, FileMode mode) override {
        return openFileBytes(path, mode);
    }
    bool rename(const fs::path& from, const fs::path& to) override { return renameFile(from, to); }
    bool remove(const fs::path& path) override {
        std::error_code error;
        return fs::remove(path, error) && !error;
    }
    bool syncFolderOf(const fs::path& path) override { return syncFolder(folderOf(path)); }
};

}  // namespace

FileSystem& systemFiles() {
    static SystemFiles files;
    return files;
}

bool mayBeWritten(const fs::path& file) {
    return std::fstream(file, std::ios::in | std::ios::out | std::ios::binary).is_open();
}

}  // namespace marnoth
