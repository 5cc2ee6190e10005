#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <new>
#include <random>
#include <thread>

#include "project/ProjectReader.h"
#include "project/ProjectSave.h"
#include "project/SavedProject.h"
#include "support/FaultyStream.h"

namespace marnoth::test::project_kill_test {
namespace {

/// What the killed process leaves behind: how many saves were whole.
class SharedCounter {
public:
    SharedCounter()
        : place_(mmap(nullptr, sizeof(Count), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)),
          count_(new (place_) Count(0)) {}
    ~SharedCounter() { munmap(place_, sizeof(Count)); }
    SharedCounter(const SharedCounter&) = delete;
    SharedCounter& operator=(const SharedCounter&) = delete;

    std::uint32_t get() const { return *count_; }
    void set(std::uint32_t value) { *count_ = value; }

private:
    using Count = std::atomic<std::uint32_t>;
    void* place_;
    Count* count_;
};

/// Saves of one project, each with a number of its own where the audition option stands.
struct NumberedSaves {
    static constexpr std::size_t kOption = 24;

    NumberedSaves() : project(projectOf({countingWave(100000), countingWave(20000, 44100, 2)})) {
        FaultyStream stream;
        EXPECT_EQ(saveProject(project, stream), S_OK);
        content = stream.bytes;
    }

    HRESULT save(const std::filesystem::path& path, std::uint32_t number) {
        project.auditionEnabled = number;
        return saveProject(project, path);
    }

    /// Byte for byte, and for a reader too.
    bool isWholeSave(const std::filesystem::path& path, std::uint32_t number) {
        std::memcpy(content.data() + kOption, &number, sizeof number);
        return fileBytes(path) == content && canBeRead(path);
    }
    static bool canBeRead(const std::filesystem::path& path) {
        RiffStream stream;
        Project project;
        return stream.open(path, FileMode::read) == kRiffOk && !readProject(stream, project);
    }

    Project project;
    Bytes content;
};

/// Saves on and on, until it is killed.
[[noreturn]] void saveForEver(NumberedSaves& saves, const ProjectPath& path, SharedCounter& done) {
    for (;;) {
        const std::uint32_t next = done.get() + 1;
        if (saves.save(path.path(), next) != S_OK) _exit(1);
        done.set(next);
    }
}

void rest(std::chrono::microseconds time) {
    std::this_thread::sleep_for(time);
}

TEST(ProjectKill, TheFormerProjectOrTheNewOneIsThereWheneverASaveIsKilled) {
    NumberedSaves saves;
    const ProjectPath path;
    SharedCounter done;
    ASSERT_EQ(saves.save(path.path(), 0), S_OK);
    std::mt19937 random{20260701};
    std::uniform_int_distribution<int> microseconds(0, 8000);
    int unfinished = 0;
    for (int kill = 0; kill < 50; ++kill) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) saveForEver(saves, path, done);
        rest(std::chrono::microseconds(microseconds(random)));
        ASSERT_EQ(::kill(child, SIGKILL), 0);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the saves went well until then";

        const std::uint32_t former = done.get();
        const bool underName =
            saves.isWholeSave(path.path(), former) || saves.isWholeSave(path.path(), former + 1);
        const bool asBackup =
            saves.isWholeSave(path.backup(), former) || saves.isWholeSave(path.backup(), former + 1);
        EXPECT_TRUE(underName || asBackup) << "kill " << kill << " after save " << former;
        unfinished += !underName;
        // What stands there now may be save `former + 1`; the next child's numbers go on behind that.
        if (saves.isWholeSave(path.path(), former + 1)) done.set(former + 1);
    }
    RecordProperty("unfinished", unfinished);
    EXPECT_GT(unfinished, 0) << "no kill came while a file was being written";
}

}  // namespace
}  // namespace marnoth::test::project_kill_test
