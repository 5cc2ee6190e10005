#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>

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

/// A studio with a project, a MIDI file and a script, all of which stay as they are.
class Inputs {
public:
    Inputs() {
        studio.save("p.mrn");
        fs::remove(studio.folder / "saved.wav");
        writeText(studio.folder / "m.mid", "no MIDI: it is never read");
        fs::create_directory(studio.folder / "sub");
        for (const char* name : {"a.wav", "p.mrn", "m.mid"}) before_[name] = studio.bytes(name);
    }

    /// Every name that a file has: its own, another spelling, a hard link and, where there are such, a
    /// symbolic link. `extension` is that of the links.
    std::vector<std::string> namesOf(const std::string& file, const std::string& extension) const {
        std::vector<std::string> names{studio.name(file), studio.name("sub/../" + file)};
        const std::string hard = "sub/hard-" + file + extension;
        fs::create_hard_link(studio.folder / file, studio.folder / hard);
        names.push_back(studio.name(hard));
#ifndef _WIN32
        const std::string soft = "sub/soft-" + file + extension;
        fs::create_symlink("../" + file, studio.folder / soft);
        names.push_back(studio.name(soft));
#endif
        return names;
    }

    /// The run was refused before it did anything, with one line that has `reason`.
    void expectRefused(const CliRun& run, const std::string& reason) const {
        EXPECT_EQ(run.status, 2) << reason;
        EXPECT_EQ(run.out, "");
        EXPECT_NE(run.err.find(reason), std::string::npos) << run.err;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        for (const auto& [name, bytes] : before_) EXPECT_TRUE(studio.bytes(name) == bytes) << name;
        for (const auto& entry : fs::recursive_directory_iterator(studio.folder / "")) {
            const std::string name = entry.path().filename().string();
            EXPECT_TRUE(!name.ends_with(".part") && !name.ends_with(".bak")) << name;
        }
    }

    Studio studio;

private:
    std::map<std::string, std::string> before_;
};

TEST(OutputsAndInputs, ARenderWritesOverNoLoopProjectOrMidiFile) {
    const Inputs it;
    const auto render = [&](const std::vector<std::string>& more) {
        std::vector<std::string> words{"--project", it.studio.name("p.mrn"),
                                       "--pad",     it.studio.pad(2, "a.wav"),
                                       "--midi",    it.studio.name("m.mid")};
        words.insert(words.end(), more.begin(), more.end());
        return it.studio.render(words);
    };
    for (const auto& [file, option] : std::vector<std::pair<std::string, std::string>>{
             {"a.wav", "--pad 2"}, {"p.mrn", "--project"}, {"m.mid", "--midi"}}) {
        for (const std::string& name : it.namesOf(file, "")) {
            it.expectRefused(render({"--out", name}),
                             "--out " + name + " is the file of " + option + ": give it another name\n");
        }
    }
    it.expectRefused(render({"--out", it.studio.name("o.wav"), "--save", it.studio.name("p")}),
                     "p.mrn is the file of --project");
    EXPECT_FALSE(it.studio.has("o.wav"));
}

TEST(OutputsAndInputs, ASaveWritesOverNoInputHoweverItIsNamed) {
    const Inputs it;
    for (const std::string& name : it.namesOf("a.wav", ".mrn")) {
        if (!name.ends_with(".mrn")) continue;
        it.expectRefused(it.studio.render({"--pad", it.studio.pad(1, "a.wav"), "--out",
                                           it.studio.name("o.wav"), "--save", name}),
                         "is the file of --pad 1");
    }
    fs::copy_file(it.studio.folder / "p.mrn", it.studio.folder / "q.mrn.bak");
    const CliRun run = it.studio.play("q.mrn.bak", "o.wav", {"--save", it.studio.name("q")});
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("needs the name q.mrn.bak for a while, which is the file of --project"),
              std::string::npos)
        << run.err;
    EXPECT_TRUE(it.studio.bytes("q.mrn.bak") == it.studio.bytes("p.mrn"));
    EXPECT_FALSE(it.studio.has("o.wav"));
}

TEST(OutputsAndInputs, AStemWritesOverNoInput) {
    const Inputs it;
    fs::copy_file(it.studio.folder / "a.wav", it.studio.folder / "pad02.wav");
    const std::string stems = it.studio.name("");
    const auto render = [&](const std::string& pad) {
        return it.studio.render(
            {"--pad", pad, "--beats", "1", "--out", it.studio.name("o.wav"), "--stems", stems});
    };
    it.expectRefused(render(it.studio.pad(2, "pad02.wav")), "pad02.wav is the file of --pad 2");
    EXPECT_FALSE(it.studio.has("o.wav"));
    // A pad that isn't played has no stem; a project's are known when it is loaded.
    EXPECT_EQ(render(it.studio.pad(1, "pad02.wav")).status, 0);
    fs::rename(it.studio.folder / "p.mrn", it.studio.folder / "pad03.wav");
    const std::string project = it.studio.bytes("pad03.wav");
    const CliRun run = it.studio.play("pad03.wav", "o2.wav", {"--stems", stems});
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("pad03.wav is the file of --project"), std::string::npos) << run.err;
    EXPECT_TRUE(it.studio.bytes("pad03.wav") == project);
    EXPECT_FALSE(it.studio.has("o2.wav"));
}

TEST(OutputsAndInputs, AnInputMayBeNamedAsAnOutputGrows) {
    const Inputs it;
    fs::copy_file(it.studio.folder / "a.wav", it.studio.folder / "o.wav.part");
    const CliRun run =
        it.studio.render({"--pad", it.studio.pad(1, "o.wav.part"), "--out", it.studio.name("o.wav")});
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("needs the name o.wav.part for a while"), std::string::npos) << run.err;
    EXPECT_TRUE(it.studio.bytes("o.wav.part") == it.studio.bytes("a.wav"));
}

TEST(OutputsAndInputs, APictureWritesOverNoProject) {
    const Inputs it;
    for (const std::string& name : it.namesOf("p.mrn", ".png"))
        it.expectRefused(marnoth({"page", it.studio.name("p.mrn"), "--out", name}),
                         "--out " + name + " is the file of the project: give it another name\n");
}

/// What a script is refused for, without the place ahead of it.
std::string refusalOf(const Studio& studio, const std::string& script) {
    writeText(studio.folder / "test.mrs", script);
    const CliRun run = marnoth({"script", studio.name("test.mrs"), "--out", studio.name("")});
    EXPECT_EQ(run.out, "") << "nothing is done";
    EXPECT_EQ(run.status, 2) << script;
    EXPECT_EQ(studio.bytes("test.mrs"), script);
    const std::size_t place = run.err.find("test.mrs:");
    return place == run.err.npos ? run.err : run.err.substr(place + 9);
}

TEST(OutputsAndInputs, AScriptWritesOverNothingThatItReads) {
    const Studio studio;
    fs::copy_file(studio.folder / "a.wav", studio.folder / "mix.wav");
    const std::string start = "connect 44100 2 mix\n";
    EXPECT_EQ(refusalOf(studio, start + "LoadFileToBin a mix.wav\nrender 10\n"),
              "3: --out " + studio.name("mix.wav") +
                  " is the file of LoadFileToBin mix.wav: give it another name\n");
    EXPECT_EQ(refusalOf(studio, start + "render 10\ninput mix.wav\n"),
              "3: input mix.wav is the file of the audio: give it another name\n");
    EXPECT_EQ(refusalOf(studio, "load-stream s.bin\nsave-stream s.bin\n"),
              "2: save-stream s.bin is the file of load-stream s.bin: give it another name\n");
    EXPECT_EQ(refusalOf(studio, "page open\nLoadFileToPad 0 a a.wav\nshot sub/../a.wav\n"),
              "3: shot sub/../a.wav is the file of LoadFileToPad a.wav: give it another name\n");
    EXPECT_EQ(refusalOf(studio, "save-stream test.mrs\n"),
              "1: save-stream test.mrs is the file of the script itself: give it another name\n");
    fs::create_hard_link(studio.folder / "a.wav", studio.folder / "hard.mrn");
    EXPECT_EQ(refusalOf(studio, "LoadFileToBin a a.wav\nSaveProject hard\n"),
              "2: SaveProject hard is the file of LoadFileToBin a.wav: give it another name\n");
    EXPECT_EQ(studio.bytes("mix.wav"), studio.bytes("a.wav"));
}

TEST(OutputsAndInputs, AScriptReadsWhatItWroteAndSavesAProjectAgain) {
    const Studio studio;
    studio.save("p.mrn");
    const std::string script =
        "connect 44100 2 mix\nLoadProject p.mrn\nSaveProject p\nsave-stream s.bin\nload-stream s.bin\n"
        "save-stream s.bin\nrender 10\n";
    // The second run finds the files of the first.
    for (int run = 0; run < 2; ++run) {
        EXPECT_NE(studio.script(script).find("render 10 -> 00000000"), std::string::npos) << run;
        EXPECT_FALSE(studio.has("p.mrn.bak"));
    }
}

#ifndef _WIN32

TEST(OutputsAndInputs, WhatIsPrintedIsAppendedToNoFileThatIsRead) {
    const Studio studio;
    const std::string before = studio.bytes("a.wav");
    const pid_t child = fork();
    if (child == 0) {
        if (!std::freopen((studio.folder / "a.wav").c_str(), "a", stdout)) _exit(9);
        _exit(marnoth({"info", studio.name("a.wav")}).status);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 2);
    EXPECT_TRUE(studio.bytes("a.wav") == before);
}

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
            statusOfInterrupted({"render", "--pad", studio.pad(1, "a.wav"), "--beats", "4000", "--block",
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
