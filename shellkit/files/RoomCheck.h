#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>

#include "platform/files/Room.h"

namespace marnoth {

/// A file that is going to be written.
struct PlannedFile {
    std::string name;  ///< as its user knows it
    std::filesystem::path folder;
    std::int64_t bytes = 0;  ///< of the file itself
    std::int64_t spool = 0;  ///< of a second file, which is there while the first one grows
};

/// Throws a `FileFailure` when the disks have no room for all these files, or one of them would be longer
/// than a file may be there.
void checkRoom(std::span<const PlannedFile> files,
               const std::function<Room(const std::filesystem::path&)>& roomOf = roomIn);

}  // namespace marnoth
