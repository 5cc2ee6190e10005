/// Memory that ends in the middle of a command: each allocation fails in turn, once and for good. The command
/// ends with a message and a status, what it was to write over stays, and nothing is left beside it.

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <ostream>
#include <streambuf>

#include "cli/CliRun.h"
#include "support/FailingAllocation.h"
#include "support/WaveFile.h"

namespace marnoth::test::memory_ends_test {
namespace {

namespace fs = std::filesystem;

/// Every allocation fails, but one of so many where a run takes ten times as long: under a sanitizer or an
/// emulator.
#if defined(MARNOTH_SANITIZED) || defined(_WIN32)
constexpr int kStride = 17;
#else
constexpr int kStride = 1;
#endif
/// Of commands that do what others do, and more.
constexpr int kSampled = 31;

/// Keeps what is printed without taking memory.
class Printed : public std::streambuf {
public:
    Printed() { setp(bytes_.data(), bytes_.data() + bytes_.size()); }
    std::string text() const { return {pbase(), pptr()}; }

private:
    std::array<char, 0x10000> bytes_;
};

struct Outcome {
    CliRun run;
    bool happened = false;  ///< whether there was such an allocation
};

Outcome runFailing(const std::vector<std::string>& words, std::int64_t number, MemoryEnds kind) {
    std::vector<std::string> arguments = words;
    Printed out;
    Printed err;
    std::ostream outStream(&out);
    std::ostream errStream(&err);
    Outcome outcome;
    {
        const FailingAllocation failing(number, kind);
        outcome.run.status = runCommandLine(std::move(arguments), outStream, errStream);
        outcome.happened = failing.happened();
    }
    outcome.run.out = out.text();
    outcome.run.err = err.text();
    return outcome;
}

/// A folder with a short loop, a project, a script, and outputs that are there already.
class Stage {
public:
    Stage() {
        const auto level = [](auto, int) { return 0.25; };
        WaveFile().floats().channels(2).frames(2205, level).acid({.beats = 1}).write(folder / "a.wav");
        writeText(folder / "test.mrs",
                  "connect 44100 2 mix 1\nattach 120\nLoadFileToPad 0 a a.wav\nStartPlayback 0\n"
                  "QueueEvents 0 0:0:60:100:480\nrender 700\nSaveProject q.mrn\n");
        EXPECT_EQ(marnoth({"render", "--pad", "1=" + name("a.wav"), "--beats", "0.01", "--out",
                           name("kept.wav"), "--save", name("p.mrn")})
                      .status,
                  0);
        for (const char* file : {"o.wav", "o.png", "pad01.wav", "out/mix.wav", "out/chan01.wav"})
            before_[file] = "what was there before";
        before_["q.mrn"] = readText(folder / "p.mrn");
        fs::create_directory(folder / "out");
        prepare();
    }

    std::string name(const std::string& file) const { return folder.name(file); }

    /// Runs a command with all memory, and keeps what it has made.
    void learn(const std::vector<std::string>& words) {
        const CliRun run = marnoth(words);
        ASSERT_EQ(run.status, 0) << run.err;
        for (const auto& [file, bytes] : before_) good_[file] = readText(folder / file);
        prepare();
    }

    /// Puts the outputs back to what they were before.
    void prepare() const {
        // Writing takes long.
        for (const auto& [file, bytes] : before_)
            if (!fs::exists(folder / file) || readText(folder / file) != bytes)
                writeText(folder / file, bytes);
        fs::remove(folder / "q.mrn.bak");
    }

    bool isAllMade() const {
        const auto isMade = [this](const auto& output) {
            return readText(folder / output.first) == output.second;
        };
        return std::all_of(good_.begin(), good_.end(), isMade);
    }

    /// Each output is what it was or what it should be, and nothing stands beside it. A save that was broken
    /// off may have what was there before beside it.
    void expectNothingLost() const {
        for (const auto& entry : fs::recursive_directory_iterator(folder / ""))
            EXPECT_NE(entry.path().extension(), ".part") << entry.path();
        for (const auto& [file, before] : before_) {
            const std::string now = readText(folder / file);
            const std::string kept =
                fs::exists(folder / (file + ".bak")) ? readText(folder / (file + ".bak")) : now;
            EXPECT_TRUE(kept == before || now == good_.at(file) || (mayDiffer && isWhole(now))) << file;
        }
    }

    TempFolder folder;
    bool mayDiffer = false;  ///< a run that ends well may have made something else, but that whole

private:
    /// By the end of a picture, and the size that stands at the front of audio and projects.
    static bool isWhole(const std::string& bytes) {
        if (bytes.starts_with("\x89PNG")) return bytes.ends_with("IEND\xAE\x42\x60\x82");
        std::uint32_t size = 0;
        if (bytes.size() < 8 || !bytes.starts_with("RIFF")) return false;
        std::memcpy(&size, bytes.data() + 4, sizeof size);
        return bytes.size() == 8 + std::size_t{size};
    }

    std::map<std::string, std::string> before_;
    std::map<std::string, std::string> good_;
};

/// Runs a command with each allocation failing. A run that ends well has made everything, or its print
/// satisfies `tells`.
void sweep(Stage& stage, const std::vector<std::string>& words,
           const std::function<bool(const std::string&)>& tells = {}, int stride = kStride) {
    stage.learn(words);
    for (const MemoryEnds kind : {MemoryEnds::once, MemoryEnds::forGood}) {
        std::int64_t number = 1;
        int failed = 0;
        for (bool happened = true; happened; number += stride) {
            const auto [run, did] = runFailing(words, number, kind);
            happened = did;
            SCOPED_TRACE("allocation " + std::to_string(number) +
                         (kind == MemoryEnds::once ? "" : " and all behind") + ", status " +
                         std::to_string(run.status) + ": " + run.err);
            stage.expectNothingLost();
            if (run.status == 0) {
                EXPECT_TRUE(tells ? tells(run.out) : stage.isAllMade()) << run.out;
                EXPECT_EQ(run.err, "");
            } else {
                ++failed;
                EXPECT_EQ(run.status, 1);
                EXPECT_TRUE(run.err.starts_with("marnoth: ")) << run.err;
                EXPECT_EQ(run.err.find("std::"), std::string::npos) << "no sentence of ours";
                EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1);
            }
            stage.prepare();
            if (::testing::Test::HasFailure()) return;
        }
        EXPECT_GT(failed, 500 / stride);
    }
}

TEST(MemoryEnds, InInfoOfAFile) {
    Stage stage;
    const std::vector<std::string> words{"info", stage.name("a.wav")};
    const std::string good = marnoth(words).out;
    sweep(stage, words, [&](const std::string& out) { return out == good; });
}

TEST(MemoryEnds, InInfoOfAProject) {
    Stage stage;
    const std::vector<std::string> words{"info", "--json", stage.name("p.mrn")};
    const std::string good = marnoth(words).out;
    sweep(stage, words, [&](const std::string& out) { return out == good; });
}

TEST(MemoryEnds, InARender) {
    Stage stage;
    sweep(stage, {"render", "--pad", "1=" + stage.name("a.wav"), "--beats", "0.01", "--block", "64", "--out",
                  stage.name("o.wav"), "--stems", stage.name(""), "--save", stage.name("q.mrn")});
}

TEST(MemoryEnds, InARenderOfIntegersAtFullScale) {
    Stage stage;
    sweep(stage, {"render", "--pad", "1=" + stage.name("a.wav") + ",volume=-3,notes=C5-D5", "--beats", "0.01",
                  "--bits", "16", "--normalize", "--out", stage.name("o.wav")});
}

TEST(MemoryEnds, InAScript) {
    Stage stage;
    const std::vector<std::string> words{"script", stage.name("test.mrs"), "--out", stage.name("out")};
    const std::string good = marnoth(words).out;
    stage.mayDiffer = true;
    // A failure of the instrument is a line of the transcript like any other.
    sweep(stage, words, [&](const std::string& out) { return out == good || out.find("-> 8") != out.npos; });
}

TEST(MemoryEnds, InAScriptThatIsAPagesUser) {
    Stage stage;
    writeText(stage.folder / "test.mrs",
              "connect 44100 2 mix\nLoadProject p.mrn\npage open\npress 40 100\nmove 60 120\nrelease 60 120\n"
              "key 46\nanswer later\nanswer cancel\nshot ../o.png\n");
    const std::vector<std::string> words{"script", stage.name("test.mrs"), "--out", stage.name("out")};
    stage.mayDiffer = true;
    sweep(
        stage, words, [&](const std::string& out) { return out.find("shot") != out.npos; }, kSampled);
}

TEST(MemoryEnds, InAPageWithAQuestion) {
    Stage stage;
    sweep(stage,
          {"page", stage.name("p.mrn"), "--key-map", "--scale", "2", "--open", "clear", "--out",
           stage.name("o.png")},
          {}, kSampled);
}

TEST(MemoryEnds, InAPage) {
    Stage stage;
    sweep(stage, {"page", stage.name("p.mrn"), "--out", stage.name("o.png")});
}

}  // namespace
}  // namespace marnoth::test::memory_ends_test
