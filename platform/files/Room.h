#pragma once

#include <cstdint>
#include <filesystem>
#include <limits>

namespace marnoth {

/// What there is room for in a folder.
struct Room {
    static constexpr std::int64_t kUnknown = std::numeric_limits<std::int64_t>::max();

    std::uint64_t volume = 0;           ///< which disk it is on
    std::int64_t freeBytes = kUnknown;  ///< of that disk, for this user
    std::int64_t mostOfAFile =
        kUnknown;  ///< bytes that one file may have, by the disk's form and the user's limits
};

/// Of a folder that is there.
Room roomIn(const std::filesystem::path& folder);

}  // namespace marnoth
