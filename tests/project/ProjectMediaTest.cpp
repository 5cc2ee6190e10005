#include <gtest/gtest.h>

#include <cstring>
#include <fstream>

#include "project/ProjectSave.h"
#include "project/ProjectWriter.h"
#include "project/SavedProject.h"
#include "support/FaultyStream.h"
#ifndef _WIN32
#include "support/FileSizeLimit.h"
#endif

namespace marnoth::test::project_media_test {
namespace {

namespace fs = std::filesystem;

/// Any bytes, the content of which doesn't matter but can be told apart.
Bytes someBytes(std::uint8_t value) {
    return Bytes(100, value);
}

/// What a project file looks like from outside.
Bytes wholeForm(std::uint8_t value) {
    Bytes bytes = someBytes(value);
    std::memcpy(bytes.data(), "RIFF\x5C\0\0\0marn", 12);
    return bytes;
}

void put(const fs::path& path, const Bytes& bytes) {
    WaveFile::writeBytes(path, bytes);
}

/// A medium that takes so many writes and then nothing more.
class FailingBytes final : public ByteStream {
public:
    FailingBytes(int writes, int& calls) : left_(writes), calls_(calls) {}

    std::int64_t read(void*, std::int64_t) override { return -1; }
    bool write(const void*, std::int64_t bytes) override {
        ++calls_;
        position_ += bytes;
        return left_-- != 0;
    }
    bool seek(std::int64_t offset) override {
        position_ = offset;
        return true;
    }
    std::int64_t position() const override { return position_; }
    std::optional<std::int64_t> size() override { return std::nullopt; }
    bool close() override { return true; }

private:
    int left_;
    int& calls_;
    std::int64_t position_ = 0;
};

TEST(ProjectMedia, AWriteThatFailsAnywhereFailsTheSave) {
    const Project project = projectOf({countingWave(5)});
    int all = 0;
    {
        RiffStream stream;
        stream.open(std::make_unique<FailingBytes>(-1, all));
        ASSERT_EQ(writeProject(stream, project), S_OK);
    }
    ASSERT_GT(all, 100);
    for (int writes = 0; writes < all; ++writes) {
        int calls = 0;
        RiffStream stream;
        stream.open(std::make_unique<FailingBytes>(writes, calls));
        EXPECT_EQ(writeProject(stream, project), E_FAIL) << writes;
        EXPECT_EQ(calls, writes + 1) << "nothing is written behind a failure";
    }
}

TEST(ProjectMedia, AStreamThatFailsAtAnyCallFailsTheSave) {
    const Project project = projectOf({countingWave(441)});
    FaultyStream good;
    ASSERT_EQ(saveProject(project, good), S_OK);
    for (int call = 1; call <= good.calls; ++call) {
        FaultyStream stream;
        stream.failFromCall = call;
        EXPECT_EQ(saveProject(project, stream), E_FAIL) << call;
        EXPECT_EQ(stream.references, 1u);
    }
}

TEST(ProjectMedia, AStreamThatDoesntTellItsPositionDecidesTheResult) {
    class Adrift : public FaultyStream {
    public:
        HRESULT Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override { return STG_E_ACCESSDENIED; }
    };
    Adrift stream;
    EXPECT_EQ(saveProject(projectOf({}), stream), STG_E_ACCESSDENIED);
    EXPECT_TRUE(stream.bytes.empty());
}

TEST(ProjectMedia, APlaceThatIsntThereFailsTheSave) {
    const TempPath missing;
    EXPECT_EQ(saveProject(projectOf({}), missing.path() / "groove.mrn"), E_FAIL);
    EXPECT_FALSE(fs::exists(missing.path()));
}

TEST(ProjectMedia, AFolderInTheWayStaysAndFailsTheSave) {
    const ProjectPath path;
    fs::create_directory(path.path());
    EXPECT_EQ(saveProject(projectOf({}), path.path()), E_FAIL);
    EXPECT_TRUE(fs::is_directory(path.path()));
    EXPECT_FALSE(fs::exists(path.backup()));
}

TEST(ProjectMedia, AFolderInTheBackupsPlaceFailsTheSaveWithNothingTouched) {
    const ProjectPath path;
    put(path.path(), wholeForm(1));
    fs::create_directory(path.backup());
    EXPECT_EQ(saveProject(projectOf({}), path.path()), E_FAIL);
    EXPECT_EQ(fileBytes(path.path()), wholeForm(1));
    EXPECT_TRUE(fs::is_directory(path.backup()));
}

TEST(ProjectMedia, AWriteProtectedProjectIsLeftAlone) {
    const ProjectPath path;
    put(path.path(), wholeForm(1));
    fs::permissions(path.path(), fs::perms::owner_read);
    if (std::fstream(path.path(), std::ios::in | std::ios::out).is_open()) {
        GTEST_SKIP() << "this user may write everything";
    }
    EXPECT_EQ(saveProject(projectOf({}), path.path()), E_FAIL);
    EXPECT_EQ(fileBytes(path.path()), wholeForm(1));
    EXPECT_FALSE(fs::exists(path.backup()));
    fs::permissions(path.path(), fs::perms::owner_all);
}

TEST(ProjectBackup, AGoodSaveLeavesNoBackup) {
    const ProjectPath path;
    put(path.path(), wholeForm(1));
    EXPECT_EQ(saveProject(projectOf({}), path.path()), S_OK);
    EXPECT_TRUE(isSavedProject(path.path()));
    EXPECT_FALSE(fs::exists(path.backup()));
}

TEST(ProjectBackup, TheBackupOfAKilledSaveStaysUntilASaveIsWhole) {
    const ProjectPath path;
    Bytes broken = wholeForm(2);
    broken[4] = 0;
    put(path.path(), broken);
    put(path.backup(), wholeForm(1));
    EXPECT_EQ(saveProject(projectOf({}), path.path()), S_OK);
    EXPECT_TRUE(isSavedProject(path.path()));
    EXPECT_FALSE(fs::exists(path.backup()));
}

TEST(ProjectBackup, AWholeFileTakesThePlaceOfAnOldBackup) {
    const ProjectPath path;
    put(path.path(), wholeForm(2));
    put(path.backup(), wholeForm(1));
    EXPECT_EQ(saveProject(projectOf({}), path.path()), S_OK);
    EXPECT_TRUE(isSavedProject(path.path()));
    EXPECT_FALSE(fs::exists(path.backup()));
}

TEST(ProjectBackup, ABackupWithoutItsFileIsLeftAlone) {
    const ProjectPath path;
    put(path.backup(), wholeForm(1));
    EXPECT_EQ(saveProject(projectOf({}), path.path()), S_OK);
    EXPECT_TRUE(isSavedProject(path.path()));
    EXPECT_EQ(fileBytes(path.backup()), wholeForm(1));
}

TEST(ProjectBackup, AFileThatIsntAProjectIsKeptLikeOne) {
    const ProjectPath path;
    put(path.path(), someBytes(9));
    EXPECT_EQ(saveProject(projectOf({}), path.path()), S_OK);
    EXPECT_TRUE(isSavedProject(path.path()));
    EXPECT_FALSE(fs::exists(path.backup()));
}

#ifndef _WIN32

TEST(ProjectBackup, ASaveGoesThroughALinkToItsFile) {
    const ProjectPath link;
    const ProjectPath real;
    put(real.path(), wholeForm(1));
    fs::create_symlink(real.path(), link.path());
    EXPECT_EQ(saveProject(projectOf({}), link.path()), S_OK);
    EXPECT_TRUE(fs::is_symlink(link.path()));
    EXPECT_TRUE(isSavedProject(real.path()));
    EXPECT_FALSE(fs::exists(real.backup()));
}

TEST(ProjectBackup, TheNewFileHasThePermissionsOfTheOld) {
    const ProjectPath path;
    put(path.path(), wholeForm(1));
    const fs::perms own = fs::perms::owner_read | fs::perms::owner_write;
    fs::permissions(path.path(), own);
    EXPECT_EQ(saveProject(projectOf({}), path.path()), S_OK);
    EXPECT_EQ(fs::status(path.path()).permissions(), own);
}

TEST(ProjectMedia, AFullDiskFailsTheSave) {
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "no full disk here";
    const ProjectPath link;
    fs::create_symlink("/dev/full", link.path());
    EXPECT_EQ(saveProject(projectOf({countingWave(22050)}), link.path()), E_FAIL);
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

#endif

/// A project of 4.4 GB that takes 4 MB: one wave, many times.
Project hugeProject() {
    const RefPtr<CWaveMem> wave = countingWave(1000000);
    return projectOf(std::vector<RefPtr<CWaveMem>>(1100, wave));
}

TEST(ProjectMedia, WhatIsTooLargeIsRefusedBeforeAnythingIsTouched) {
    const Project project = hugeProject();
    EXPECT_GT(projectBytes(project), 0x100000007);
    const ProjectPath path;
    put(path.path(), wholeForm(1));
    EXPECT_EQ(saveProject(project, path.path()), E_FAIL);
    EXPECT_EQ(fileBytes(path.path()), wholeForm(1));
    EXPECT_FALSE(fs::exists(path.backup()));
    FaultyStream stream;
    EXPECT_EQ(saveProject(project, stream), E_FAIL);
    EXPECT_TRUE(stream.bytes.empty());
}

TEST(ProjectMedia, AWaveWithoutSamplesIsRefusedBeforeAnythingIsTouched) {
    Project project = projectOf({countingWave(10), CWaveMem::make()});
    const ProjectPath path;
    put(path.path(), wholeForm(1));
    EXPECT_EQ(saveProject(project, path.path()), E_FAIL);
    EXPECT_EQ(fileBytes(path.path()), wholeForm(1));
    EXPECT_FALSE(fs::exists(path.backup()));
    project.files[1].wave.reset();
    EXPECT_EQ(saveProject(project, path.path()), E_FAIL);
}

/// A save whose medium fails half way: the project is larger than the medium takes.
TEST(ProjectBackup, AfterAFailedSaveTheFormerProjectIsTheBackup) {
#ifdef _WIN32
    GTEST_SKIP() << "no way to make a file of its own fail here";
#else
    const ProjectPath path;
    put(path.path(), wholeForm(1));
    const Project project = projectOf({countingWave(44100)});
    {
        const FileSizeLimit limit(50000);
        EXPECT_EQ(saveProject(project, path.path()), E_FAIL);
    }
    EXPECT_EQ(fileBytes(path.backup()), wholeForm(1));
    EXPECT_FALSE(isSavedProject(path.path()));
    {
        const FileSizeLimit limit(60000);
        EXPECT_EQ(saveProject(project, path.path()), E_FAIL);
    }
    EXPECT_EQ(fileBytes(path.backup()), wholeForm(1)) << "the next failure doesn't cost it";
    EXPECT_EQ(saveProject(project, path.path()), S_OK);
    EXPECT_TRUE(isSavedProject(path.path()));
    EXPECT_FALSE(fs::exists(path.backup()));
#endif
}

}  // namespace
}  // namespace marnoth::test::project_media_test
