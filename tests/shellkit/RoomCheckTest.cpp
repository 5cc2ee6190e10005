#include <gtest/gtest.h>

#include "shellkit/TempFolder.h"
#include "shellkit/files/Failure.h"
#include "shellkit/files/RoomCheck.h"

#ifndef _WIN32
#include "support/FileSizeLimit.h"
#endif

namespace marnoth::test::room_check_test {
namespace {

/// Two disks: "a" and "b" are on one of 1000 bytes, everything else on one of 100 whose files have 60 at
/// most.
Room twoDisks(const std::filesystem::path& folder) {
    return folder == "a" || folder == "b" ? Room{1, 1000, Room::kUnknown} : Room{2, 100, 60};
}

std::string failureOf(const std::vector<PlannedFile>& files) {
    try {
        checkRoom(files, twoDisks);
        return {};
    } catch (const FileFailure& failure) {
        return failure.what();
    }
}

TEST(RoomCheck, FilesOfOneDiskShareItsRoom) {
    EXPECT_EQ(failureOf({{"mix", "a", 500}, {"stem", "b", 500}, {"card", "c", 60}}), "");
    EXPECT_NE(failureOf({{"mix", "a", 500}, {"stem", "b", 501}})
                  .find("stem: the disk has 1.0 kB left, and 1.0 kB are needed"),
              std::string::npos);
}

TEST(RoomCheck, WhatWaitsInASecondFileNeedsRoomToo) {
    EXPECT_EQ(failureOf({{"mix", "a", 300, 600}}), "");
    EXPECT_NE(failureOf({{"mix", "a", 300, 800}}).find("1.1 kB are needed"), std::string::npos);
}

TEST(RoomCheck, AFileThatWouldBeTooLongIsToldBySizes) {
    EXPECT_NE(failureOf({{"mix", "c", 61}})
                  .find("mix: it needs a file of 61 bytes, and none there may have more than 60 bytes"),
              std::string::npos);
    EXPECT_NE(failureOf({{"mix", "c", 20, 61}}).find("a file of 61 bytes"), std::string::npos);
}

TEST(Room, ARealFolderHasSome) {
    const TempFolder folder;
    const Room room = roomIn(folder / "");
    EXPECT_GT(room.freeBytes, 0);
    EXPECT_LT(room.freeBytes, Room::kUnknown);
    EXPECT_EQ(room.volume, roomIn(std::filesystem::temp_directory_path()).volume);
}

#ifndef _WIN32
TEST(Room, AFolderInMemoryHoldsFilesOfAnyLength) {
    if (!std::filesystem::exists("/dev/shm")) GTEST_SKIP() << "there is none";
    EXPECT_EQ(roomIn("/dev/shm").mostOfAFile, Room::kUnknown);
}

TEST(Room, AUsersLimitIsOneOfTheFile) {
    const TempFolder folder;
    const FileSizeLimit limit(12345);
    EXPECT_EQ(roomIn(folder / "").mostOfAFile, 12345);
}
#endif

}  // namespace
}  // namespace marnoth::test::room_check_test
