#pragma once

#include <cstdint>
#include <filesystem>
#include <tuple>

namespace marnoth {

/// Which file a name means. All names of one file give the same: hard links, symbolic links and other
/// spellings. A file that isn't there yet is known by the place that it would have.
struct FileIdentity {
    std::uint64_t volume = 0;     ///< of a file that is there: its device's number
    std::uint64_t file = 0;       ///< and its own on that
    std::filesystem::path place;  ///< of one that isn't, behind symbolic links; else empty

    bool operator==(const FileIdentity&) const = default;
    bool operator<(const FileIdentity& other) const {
        return std::tie(volume, file, place) < std::tie(other.volume, other.file, other.place);
    }
};

FileIdentity identityOf(const std::filesystem::path& name);

}  // namespace marnoth
