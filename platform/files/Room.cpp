#include "platform/files/Room.h"

#include <algorithm>
#include <system_error>

#include "platform/files/FileIdentity.h"

#ifdef _WIN32
#include <windows.h>

#include <array>
#include <string_view>
#else
#include <sys/resource.h>
#include <sys/vfs.h>
#endif

namespace marnoth {

namespace {

namespace fs = std::filesystem;

/// Of a file on a disk that tells sizes in 32 bits, as memory cards do.
constexpr std::int64_t kMostOfFat = 0xFFFFFFFF;

#ifdef _WIN32

std::int64_t mostOfAFileIn(const fs::path& folder) {
    std::array<wchar_t, MAX_PATH + 1> root{};
    std::array<wchar_t, MAX_PATH + 1> form{};
    const fs::path whole = fs::absolute(folder);
    const bool known =
        GetVolumePathNameW(whole.c_str(), root.data(), MAX_PATH) &&
        GetVolumeInformationW(root.data(), nullptr, 0, nullptr, nullptr, nullptr, form.data(), MAX_PATH);
    return known && std::wstring_view(form.data()).starts_with(L"FAT") ? kMostOfFat : Room::kUnknown;
}

/// The library's own function takes memory here and ends the process where there is none.
std::int64_t freeBytesIn(const fs::path& folder) {
    ULARGE_INTEGER available{};
    const bool known = GetDiskFreeSpaceExW(folder.c_str(), &available, nullptr, nullptr) != 0;
    constexpr auto kMost = static_cast<std::uint64_t>(Room::kUnknown);
    return known ? static_cast<std::int64_t>(std::min<std::uint64_t>(available.QuadPart, kMost))
                 : Room::kUnknown;
}

#else

std::int64_t mostOfAFileIn(const fs::path& folder) {
    rlimit limit{};
    const bool isLimited = getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur < Room::kUnknown;
    const std::int64_t own = isLimited ? static_cast<std::int64_t>(limit.rlim_cur) : Room::kUnknown;
    struct statfs disk {};
    // The system's own question for the most of a file answers 4 GiB for whatever it doesn't know.
    constexpr auto kFat = 0x4d44;
    const bool isFat = statfs(folder.c_str(), &disk) == 0 && disk.f_type == kFat;
    return isFat ? std::min(own, kMostOfFat) : own;
}

std::int64_t freeBytesIn(const fs::path& folder) {
    std::error_code error;
    const std::uintmax_t available = fs::space(folder, error).available;
    const bool known = !error && available < static_cast<std::uintmax_t>(Room::kUnknown);
    return known ? static_cast<std::int64_t>(available) : Room::kUnknown;
}

#endif

}  // namespace

Room roomIn(const fs::path& folder) {
    Room room;
    room.volume = identityOf(folder).volume;
    room.mostOfAFile = mostOfAFileIn(folder);
    room.freeBytes = freeBytesIn(folder);
    return room;
}

}  // namespace marnoth
