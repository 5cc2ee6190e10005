#include <gtest/gtest.h>

#include <algorithm>

#include "cli/Studio.h"
#include "platform/files/Leftover.h"

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <thread>
#endif

namespace marnoth::test::outputs_test {
namespace {

namespace fs = std::filesystem;

TEST(Outputs, ADashIsStandardOutputAndTheReportGoesBeside) {
    const Studio studio;
    const auto render = [&](const std::string& out) {
        return studio.render({"--pad", studio.pad(1, "a.wav"), "--beats", "1", "--out", out});
    };
    ASSERT_EQ(render(studio.name("out.wav")).status, 0);
    const CliRun run = render("-");
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.out == studio.bytes("out.wav"));
    EXPECT_TRUE(run.err.starts_with("standard output: 0.500 s, ")) << run.err;
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
}

TEST(Outputs, AFailedRenderPrintsNoAudio) {
    const Studio studio;
    const CliRun run = studio.render({"--pad", studio.pad(1, "none.wav"), "--out", "-"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
}

TEST(Outputs, ThePictureOfAPageMayGoThereToo) {
    const Studio studio;
    ASSERT_EQ(marnoth({"page", "--out", studio.name("a.png")}).status, 0);
    const CliRun run = marnoth({"page", "--out", "-"});
    EXPECT_TRUE(run.out == studio.bytes("a.png"));
    EXPECT_TRUE(run.err.starts_with("standard output: 600 by ")) << run.err;
}

TEST(Outputs, APartThatIsThereEndsTheRunAndStays) {
    const Studio studio;
    writeText(studio.folder / "out.wav.part", "another's");
    writeText(studio.folder / "a.png.part", "another's");
    fs::create_directory(studio.folder / "out");
    writeText(studio.folder / "out" / "mix.wav.part", "another's");
    for (const CliRun& run :
         {studio.render({"--pad", studio.pad(1, "a.wav"), "--out", studio.name("out.wav")}),
          marnoth({"page", "--out", studio.name("a.png")}),
          runScriptText(studio.folder, "connect 44100 2 mix\nrender 10\n")}) {
        EXPECT_EQ(run.status, 1);
        EXPECT_NE(run.err.find(".part is in the way"), std::string::npos) << run.err;
    }
    for (const char* name : {"out.wav.part", "a.png.part", "out/mix.wav.part"})
        EXPECT_EQ(studio.bytes(name), "another's") << name;
}

#ifndef _WIN32

/// Waits for a file that a process is about to make.
bool comes(const fs::path& path) {
    for (int i = 0; i < 1000 && !fs::exists(path); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return fs::exists(path);
}

/// Runs the program in a process of its own and signals it when `part` is there; gives its status.
int statusOfInterrupted(const std::vector<std::string>& words, const fs::path& part, int signal) {
    const pid_t child = fork();
    if (child == 0) {
        std::signal(signal, SIG_DFL);
        removeLeftoversOnSignals();
        marnoth(words);
        _exit(0);
    }
    EXPECT_TRUE(comes(part)) << part;
    kill(child, signal);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Outputs, AnInterruptedRenderLeavesNoParts) {
    const Studio studio;
    for (const int signal : {SIGINT, SIGTERM}) {
        const int status =
            statusOfInterrupted({"render", "--pad", studio.pad(1, "a.wav"), "--beats", "1000000", "--block",
                                 "16", "--out", studio.name("out.wav"), "--stems", studio.name("stems")},
                                studio.folder / "out.wav.part", signal);
        EXPECT_EQ(status, 128 + signal);
        EXPECT_FALSE(studio.has("out.wav.part") || studio.has("out.wav"));
        EXPECT_TRUE(fs::is_empty(studio.folder / "stems"));
    }
}

TEST(Outputs, AnInterruptedScriptLeavesNoParts) {
    const Studio studio;
    writeText(studio.folder / "long.mrs", "connect 44100 2 all\nblock 16\nrender 100000000\n");
    const int status = statusOfInterrupted({"script", studio.name("long.mrs"), "--out", studio.name("out")},
                                           studio.folder / "out" / "chan16.wav.part", SIGTERM);
    EXPECT_EQ(status, 143);
    EXPECT_TRUE(fs::is_empty(studio.folder / "out"));
}

#endif

}  // namespace
}  // namespace marnoth::test::outputs_test
