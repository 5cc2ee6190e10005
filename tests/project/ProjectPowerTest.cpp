#include <gtest/gtest.h>

#include <map>
#include <set>

#include "platform/files/Leftover.h"
#include "project/ProjectBackup.h"
#include "project/ProjectSave.h"
#include "project/SavedProject.h"
#include "support/WatchedFiles.h"

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#endif

namespace marnoth::test::project_power_test {
namespace {

namespace fs = std::filesystem;
using Kind = FileChange::Kind;
using Changes = std::vector<FileChange>;

/// A folder of its own for one project.
class ProjectFolder {
public:
    ProjectFolder() { fs::create_directory(folder_.path()); }
    ~ProjectFolder() {
        std::error_code ignored;
        fs::remove_all(folder_.path(), ignored);
    }
    fs::path project() const { return folder_.path() / "p.mrn"; }
    fs::path backup() const { return folder_.path() / "p.mrn.bak"; }

private:
    TempPath folder_;
};

const Project& someProject() {
    static const Project project = projectOf({countingWave(50000)});
    return project;
}

Changes changesOfSave(const fs::path& path) {
    Changes changes;
    WatchedFiles files([&](const FileChange& change) {
        changes.push_back(change);
        return true;
    });
    EXPECT_EQ(saveProject(someProject(), path, files), S_OK);
    return changes;
}

/// With one entry for writes in a row.
Changes inShort(const Changes& changes) {
    Changes brief;
    for (const FileChange& change : changes)
        if (brief.empty() || change.kind != Kind::write || brief.back() != change) brief.push_back(change);
    return brief;
}

const FileChange kSyncFolder{Kind::syncFolder, {}};
/// The mark of a whole form goes out by itself, behind all else.
const Changes kWriting{
    {Kind::create, "p.mrn"}, kSyncFolder,           {Kind::write, "p.mrn"}, {Kind::sync, "p.mrn"},
    {Kind::write, "p.mrn"},  {Kind::sync, "p.mrn"}, {Kind::close, "p.mrn"}};

Changes joined(Changes first, const Changes& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

TEST(ProjectPower, TheMediumHasTheNewBytesBeforeTheFormerProjectGoes) {
    const ProjectFolder folder;
    ASSERT_EQ(saveProject(projectOf({}), folder.project()), S_OK);
    const Changes asBackup{{Kind::rename, "p.mrn", "p.mrn.bak"}, kSyncFolder};
    const Changes backupGoes{{Kind::remove, "p.mrn.bak"}, kSyncFolder};
    EXPECT_TRUE(inShort(changesOfSave(folder.project())) == joined(joined(asBackup, kWriting), backupGoes));
    EXPECT_TRUE(isSavedProject(folder.project()));
}

#ifndef _WIN32

TEST(ProjectPower, AnInterruptionWaitsUntilASaveIsDone) {
    for (const Kind step : {Kind::rename, Kind::create, Kind::write, Kind::sync, Kind::close, Kind::remove}) {
        const ProjectFolder folder;
        ASSERT_EQ(saveProject(projectOf({}), folder.project()), S_OK);
        const pid_t child = fork();
        if (child == 0) {
            std::signal(SIGTERM, SIG_DFL);
            removeLeftoversOnSignals();
            WatchedFiles files([step](const FileChange& change) {
                if (change.kind == step) std::raise(SIGTERM);
                return true;
            });
            saveProject(someProject(), folder.project(), files);
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_EQ(WEXITSTATUS(status), 143);
        EXPECT_TRUE(isSavedProject(folder.project()));
        EXPECT_FALSE(fs::exists(folder.backup()));
    }
}

#endif

TEST(ProjectPower, TheMediumHasAProjectThatIsTheFirstUnderItsName) {
    const ProjectFolder folder;
    EXPECT_TRUE(inShort(changesOfSave(folder.project())) == kWriting);
}

TEST(ProjectPower, TheBackupOfABrokenSaveGoesOnlyWhenTheMediumHasTheNext) {
    const ProjectFolder folder;
    ASSERT_EQ(saveProject(projectOf({}), folder.backup()), S_OK);
    WaveFile::writeBytes(folder.project(), Bytes(100, 0));
    const Changes backupGoes{{Kind::remove, "p.mrn.bak"}, kSyncFolder};
    EXPECT_TRUE(inShort(changesOfSave(folder.project())) == joined(kWriting, backupGoes));
}

/// What a medium may hold when the power goes: names and contents that it was told to keep, and of what came
/// since any part.
class Medium {
public:
    /// Whether the file under a name holds a whole project. Files are told apart by numbers.
    struct File {
        bool isWhole = false;
    };
    using Names = std::map<std::string, int>;

    explicit Medium(Names names) : kept_{std::move(names)}, now_(kept_) {
        for (const auto& [name, file] : kept_) files_[file] = {true};
    }

    void take(const FileChange& change) {
        if (change.kind == Kind::create && !now_.count(change.path)) rename([&] { now_[change.path] = 100; });
        if (change.kind == Kind::create) files_[now_[change.path]].isWhole = false;
        if (change.kind == Kind::write) files_[now_[change.path]].isWhole = false;
        if (change.kind == Kind::sync) files_[now_[change.path]].isWhole = ++syncs_ == 2;
        if (change.kind == Kind::rename)
            rename([&] {
                now_[change.to] = now_[change.path];
                now_.erase(change.path);
            });
        if (change.kind == Kind::remove) rename([&] { now_.erase(change.path); });
        if (change.kind == Kind::syncFolder) kept_ = now_, since_.clear();
    }

    /// Whether a project is whole under its name or as its backup, whatever of the names the medium has.
    bool keepsAProject() const {
        if (!holdsOne(kept_)) return false;
        for (const Names& names : since_)
            if (!holdsOne(names)) return false;
        return true;
    }

private:
    template <class Change>
    void rename(Change change) {
        change();
        since_.push_back(now_);
    }
    bool holdsOne(const Names& names) const {
        for (const char* name : {"p.mrn", "p.mrn.bak"})
            if (names.count(name) && files_.at(names.at(name)).isWhole) return true;
        return false;
    }

    Names kept_;                ///< what the medium has been told to keep
    Names now_;                 ///< what the process sees
    std::vector<Names> since_;  ///< what the medium may have in place of `kept_`
    std::map<int, File> files_;
    int syncs_ = 0;  ///< the first has all but the mark of a whole form, the second that too
};

TEST(ProjectPower, WheneverThePowerGoesTheMediumHoldsAWholeProject) {
    const ProjectFolder folder;
    ASSERT_EQ(saveProject(projectOf({}), folder.project()), S_OK);
    const Changes changes = changesOfSave(folder.project());
    Medium medium({{"p.mrn", 1}});
    for (std::size_t i = 0; i < changes.size(); ++i) {
        medium.take(changes[i]);
        EXPECT_TRUE(medium.keepsAProject()) << "after change " << i;
    }
}

TEST(ProjectPower, AChangeThatFailsFailsTheSaveAndCostsNoProject) {
    const ProjectFolder first;
    ASSERT_EQ(saveProject(projectOf({}), first.project()), S_OK);
    const std::size_t all = changesOfSave(first.project()).size();
    const std::size_t untilWhole = all - 2;  // the backup's removal follows
    for (std::size_t failing = 0; failing < untilWhole; ++failing) {
        const ProjectFolder folder;
        ASSERT_EQ(saveProject(projectOf({}), folder.project()), S_OK);
        std::size_t count = 0;
        WatchedFiles files([&](const FileChange&) { return count++ != failing; });
        EXPECT_EQ(saveProject(someProject(), folder.project(), files), E_FAIL) << failing;
        EXPECT_TRUE(isSavedProject(folder.project()) || isSavedProject(folder.backup())) << failing;
        const bool isOld = fs::exists(folder.backup()) || fs::file_size(folder.project()) < 10000;
        EXPECT_TRUE(isOld) << "change " << failing << ": the save failed and took the former project";
    }
}

TEST(ProjectPower, ABackupThatCannotGoFailsNoSave) {
    const ProjectFolder folder;
    ASSERT_EQ(saveProject(projectOf({}), folder.project()), S_OK);
    WatchedFiles files([](const FileChange& change) { return change.kind != Kind::remove; });
    EXPECT_EQ(saveProject(someProject(), folder.project(), files), S_OK);
    EXPECT_TRUE(isSavedProject(folder.project()));
    EXPECT_TRUE(isSavedProject(folder.backup()));
}

}  // namespace
}  // namespace marnoth::test::project_power_test
