#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "platform/files/FileIdentity.h"
#include "platform/files/Links.h"
#include "platform/files/TemporaryFile.h"
#include "support/TempPath.h"

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#endif

namespace marnoth::test::temporary_file_test {
namespace {

namespace fs = std::filesystem;

void put(const fs::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

std::string textOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Writes `text` and lets go of the file.
void fill(TemporaryFile& file, const std::string& text) {
    const auto bytes = file.takeBytes();
    EXPECT_TRUE(bytes->write(text.data(), static_cast<std::int64_t>(text.size())));
    EXPECT_TRUE(bytes->close());
}

TEST(TemporaryFile, GoesUnlessItGotItsName) {
    const TempPath place;
    const TempPath name;
    fill(*TemporaryFile::make(place.path()), "lost");
    EXPECT_FALSE(fs::exists(place.path()));
    put(name.path(), "former");
    const auto file = TemporaryFile::make(place.path());
    fill(*file, "new");
    EXPECT_EQ(textOf(name.path()), "former");
    EXPECT_TRUE(file->becomes(name.path()));
    EXPECT_EQ(textOf(name.path()), "new");
    EXPECT_FALSE(fs::exists(place.path()));
}

TEST(TemporaryFile, AFileThatIsThereIsLeftAlone) {
    const TempPath place;
    put(place.path(), "another's");
    EXPECT_EQ(TemporaryFile::make(place.path()), nullptr);
    EXPECT_EQ(textOf(place.path()), "another's");
    const TempPath second;
    const auto first = TemporaryFile::make(second.path());
    EXPECT_EQ(TemporaryFile::make(second.path()), nullptr) << "also while it is written";
}

TEST(TemporaryFile, BehindItsNameItTouchesNobodysFile) {
    const TempPath place;
    const TempPath name;
    {
        const auto file = TemporaryFile::make(place.path());
        fill(*file, "new");
        ASSERT_TRUE(file->becomes(name.path()));
        put(place.path(), "another's");
    }
    EXPECT_EQ(textOf(place.path()), "another's");
}

TEST(TemporaryFile, AnywhereThereIsAPlaceForIt) {
    const auto first = TemporaryFile::makeAnywhere();
    const auto second = TemporaryFile::makeAnywhere();
    ASSERT_TRUE(first && second);
    EXPECT_NE(first->path(), second->path());
}

bool isOneFile(const fs::path& a, const fs::path& b) {
    return identityOf(a) == identityOf(b);
}

TEST(FileIdentity, IsOneForEveryNameOfAFile) {
    const TempPath folder;
    fs::create_directories(folder.path() / "sub");
    const fs::path file = folder.path() / "a";
    put(file, "a");
    put(folder.path() / "b", "a");
    EXPECT_TRUE(isOneFile(file, folder.path() / "sub" / ".." / "a"));
    EXPECT_FALSE(isOneFile(file, folder.path() / "b")) << "the same content isn't the same file";
    fs::create_hard_link(file, folder.path() / "hard");
    EXPECT_TRUE(isOneFile(file, folder.path() / "hard"));
    EXPECT_TRUE(isOneFile(folder.path() / "none", folder.path() / "sub" / ".." / "none"));
    EXPECT_FALSE(isOneFile(folder.path() / "none", folder.path() / "sub" / "none"));
    fs::remove_all(folder.path());
}

#ifndef _WIN32

TEST(FileIdentity, GoesThroughSymbolicLinks) {
    const TempPath folder;
    fs::create_directories(folder.path() / "sub");
    fs::create_symlink("none", folder.path() / "first");
    fs::create_symlink("../first", folder.path() / "sub" / "second");
    EXPECT_EQ(behindLinks(folder.path() / "first"), folder.path() / "none");
    EXPECT_TRUE(isOneFile(folder.path() / "sub" / "second", folder.path() / "none"));
    fs::create_symlink("circle", folder.path() / "circle");
    EXPECT_EQ(behindLinks(folder.path() / "circle"), folder.path() / "circle");
    fs::remove_all(folder.path());
}

/// Runs `work` in a process of its own until the signal comes that it sends itself, or is sent.
template <class Work>
int statusOfProcess(Work work) {
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGINT, SIG_DFL);
        std::signal(SIGTERM, SIG_DFL);
        removeLeftoversOnSignals();
        work();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Leftover, GoesWithTheProcessThatASignalEnds) {
    for (const int signal : {SIGINT, SIGTERM}) {
        const TempPath place;
        const TempPath kept;
        const int status = statusOfProcess([&] {
            const auto file = TemporaryFile::make(place.path());
            const auto whole = TemporaryFile::make(kept.path().string() + ".part");
            whole->becomes(kept.path());
            std::raise(signal);
        });
        EXPECT_EQ(status, 128 + signal);
        EXPECT_FALSE(fs::exists(place.path()));
        EXPECT_TRUE(fs::exists(kept.path())) << "what has its name stays";
    }
}

TEST(Leftover, ASignalWaitsWhileThePauseLasts) {
    const TempPath done;
    EXPECT_EQ(statusOfProcess([&] {
                  const SignalPause outer;
                  {
                      const SignalPause inner;
                      std::raise(SIGTERM);
                  }
                  put(done.path(), "done");
              }),
              143);
    EXPECT_TRUE(fs::exists(done.path()));
}

TEST(Leftover, ASignalThatIsIgnoredStaysIgnored) {
    EXPECT_EQ(statusOfProcess([] {
                  std::signal(SIGINT, SIG_IGN);
                  removeLeftoversOnSignals();
                  std::raise(SIGINT);
              }),
              0);
}

#endif

}  // namespace
}  // namespace marnoth::test::temporary_file_test
