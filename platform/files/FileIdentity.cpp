#include "platform/files/FileIdentity.h"

#include <optional>
#include <system_error>
#include <utility>

#include "platform/files/Links.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/stat.h>
#endif

namespace marnoth {
namespace {

namespace fs = std::filesystem;

#ifdef _WIN32

std::optional<FileIdentity> identityOfFile(const fs::path& name) {
    constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE handle =
        CreateFileW(name.c_str(), 0, kShared, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return std::nullopt;
    BY_HANDLE_FILE_INFORMATION info;
    const bool known = GetFileInformationByHandle(handle, &info) != 0;
    CloseHandle(handle);
    if (!known) return std::nullopt;
    return FileIdentity{
        info.dwVolumeSerialNumber, std::uint64_t{info.nFileIndexHigh} << 32 | info.nFileIndexLow, {}};
}

#else

std::optional<FileIdentity> identityOfFile(const fs::path& name) {
    struct stat info;
    if (stat(name.c_str(), &info) != 0) return std::nullopt;
    return FileIdentity{info.st_dev, info.st_ino, {}};
}

#endif

fs::path placeOf(const fs::path& name) {
    std::error_code error;
    fs::path place = fs::weakly_canonical(fs::absolute(behindLinks(name), error), error);
    return error ? name : place;
}

}  // namespace

FileIdentity identityOf(const fs::path& name) {
    if (const auto there = identityOfFile(name)) return *there;
    // A name that leads through a folder that isn't there yet may come to mean a file that is.
    fs::path place = placeOf(name);
    if (const auto there = identityOfFile(place)) return *there;
    return {0, 0, std::move(place)};
}

}  // namespace marnoth
