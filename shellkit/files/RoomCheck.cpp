#include "shellkit/files/RoomCheck.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>

#include "shellkit/files/Failure.h"

namespace marnoth {

namespace {

/// In the unit that gives few digits: "21.2 GB".
std::string sizeText(std::int64_t bytes) {
    constexpr std::array kUnits{"bytes", "kB", "MB", "GB", "TB"};
    auto size = static_cast<double>(bytes);
    std::size_t unit = 0;
    for (; size >= 1000 && unit + 1 < kUnits.size(); ++unit) size /= 1000;
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), unit == 0 ? "%.0f %s" : "%.1f %s", size, kUnits[unit]);
    return text.data();
}

void checkLength(const PlannedFile& file, const Room& room) {
    const std::int64_t longest = std::max(file.bytes, file.spool);
    if (longest > room.mostOfAFile)
        throw FileFailure(file.name + ": it needs a file of " + sizeText(longest) +
                          ", and none there may have more than " + sizeText(room.mostOfAFile) +
                          ": render less, or onto another disk");
}

}  // namespace

void checkRoom(std::span<const PlannedFile> files,
               const std::function<Room(const std::filesystem::path&)>& roomOf) {
    std::map<std::uint64_t, std::int64_t> needed;
    for (const PlannedFile& file : files) {
        const Room room = roomOf(file.folder);
        checkLength(file, room);
        std::int64_t& sum = needed[room.volume];
        sum += file.bytes + file.spool;
        if (sum > room.freeBytes)
            throw FileFailure(file.name + ": the disk has " + sizeText(room.freeBytes) + " left, and " +
                              sizeText(sum) + " are needed: make room, render less, or onto another disk");
    }
}

}  // namespace marnoth
