#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "shellkit/TempFolder.h"
#include "shells/desktop/projects/RecoveryFile.h"

namespace marnoth::test::recovery_file_test {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

/// Writes and waits until it is written.
void write(RecoveryFile& file, Bytes bytes) {
    ASSERT_TRUE(file.write([bytes] { return std::optional(bytes); }));
    while (file.isBusy()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

/// What a program leaves that ends in the middle of its work.
fs::path leftIn(const fs::path& folder, const std::string& text) {
    fs::path place;
    {
        const RecoveryFile file(folder);
        place = file.path();
    }
    writeText(place, text);
    return place;
}

TEST(RecoveryFile, NothingIsLeftWhereAProgramEndsWell) {
    const TempFolder folder;
    {
        RecoveryFile file(folder / "state");
        EXPECT_FALSE(file.found());
        write(file, {'a', 'b'});
        EXPECT_EQ(readText(file.path()), "ab");
        write(file, {'c'});
        EXPECT_EQ(readText(file.path()), "c");
    }
    EXPECT_FALSE(RecoveryFile(folder / "state").found());
}

TEST(RecoveryFile, WhatWasLeftIsFoundAndStaysUntilItIsAnsweredFor) {
    const TempFolder folder;
    const fs::path left = leftIn(folder / "state", "song");
    {
        RecoveryFile file(folder / "state");
        ASSERT_TRUE(file.found());
        EXPECT_EQ(*file.found(), left);
        EXPECT_FALSE(file.write([] { return std::optional(Bytes{'x'}); })) << "not over what was found";
    }
    EXPECT_EQ(readText(left), "song") << "nobody has answered";
    {
        RecoveryFile file(folder / "state");
        file.settle();
    }
    EXPECT_FALSE(fs::exists(left));
}

TEST(RecoveryFile, ProgramsThatRunAtOnceHaveAPlaceEach) {
    const TempFolder folder;
    RecoveryFile one(folder / "state");
    RecoveryFile other(folder / "state");
    EXPECT_NE(one.path(), other.path());
    write(one, {'1'});
    write(other, {'2'});
    EXPECT_EQ(readText(one.path()), "1");
}

TEST(RecoveryFile, WhatAnotherProgramIsWorkingOnIsNotFound) {
    const TempFolder folder;
    RecoveryFile one(folder / "state");
    write(one, {'1'});
    EXPECT_FALSE(RecoveryFile(folder / "state").found());
}

TEST(RecoveryFile, WhatWasLeftIsFoundBeforeAnEmptyPlaceIsTaken) {
    const TempFolder folder;
    fs::path second;
    {
        RecoveryFile one(folder / "state");
        second = leftIn(folder / "state", "song");
    }
    RecoveryFile file(folder / "state");
    ASSERT_TRUE(file.found());
    EXPECT_EQ(*file.found(), second);
}

TEST(RecoveryFile, WhatCantBeReadIsKeptUnderAnotherName) {
    const TempFolder folder;
    leftIn(folder / "state", "broken");
    fs::path aside;
    {
        RecoveryFile file(folder / "state");
        aside = file.putAside();
        write(file, {'n'});
    }
    EXPECT_EQ(readText(aside), "broken");
    EXPECT_FALSE(RecoveryFile(folder / "state").found());
}

TEST(RecoveryFile, WhatTheUserPutsOffStaysForTheNextProgramWhileThisOneCopiesElsewhere) {
    const TempFolder folder;
    const fs::path left = leftIn(folder / "state", "song");
    {
        RecoveryFile file(folder / "state");
        file.leaveFound();
        EXPECT_NE(file.path(), left);
        write(file, {'n'});
        EXPECT_EQ(readText(file.path()), "n");
    }
    EXPECT_EQ(readText(left), "song");
    EXPECT_EQ(RecoveryFile(folder / "state").found(), left);
}

TEST(RecoveryFile, AProjectThatIsSavedNeedsNoCopy) {
    const TempFolder folder;
    RecoveryFile file(folder / "state");
    write(file, {'a'});
    file.discard();
    EXPECT_FALSE(fs::exists(file.path()));
}

TEST(RecoveryFile, ACopyThatIsKeptIsFoundByTheNext) {
    const TempFolder folder;
    {
        RecoveryFile file(folder / "state");
        ASSERT_TRUE(file.write([] { return std::optional(Bytes{'a'}); }));
        file.keep();
    }
    EXPECT_TRUE(RecoveryFile(folder / "state").found());
}

TEST(RecoveryFile, WithoutAFolderNothingIsKeptAndNothingFails) {
    RecoveryFile file{fs::path()};
    EXPECT_TRUE(file.path().empty());
    EXPECT_FALSE(file.write([] { return std::optional(Bytes{'x'}); }));
    RecoveryFile refused("/proc/no/such");
    EXPECT_FALSE(refused.write([] { return std::optional(Bytes{'x'}); }));
}

TEST(RecoveryFile, AStateThatCantBeHadLeavesTheFormerCopy) {
    const TempFolder folder;
    RecoveryFile file(folder / "state");
    write(file, {'a'});
    ASSERT_TRUE(file.write([] { return std::optional<Bytes>(); }));
    while (file.isBusy()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(readText(file.path()), "a");
}

}  // namespace
}  // namespace marnoth::test::recovery_file_test
