#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include "cli/Studio.h"

namespace marnoth::test::project_files_test {
namespace {

namespace fs = std::filesystem;

/// The bytes of a saved project with some of them changed. Offsets are those of the form itself: the common
/// header is the first chunk, at 12, the key map follows it.
class Damage {
public:
    explicit Damage(std::string bytes) : bytes_(std::move(bytes)) {}

    template <class T>
    Damage& put(std::size_t offset, T value) {
        std::memcpy(bytes_.data() + offset, &value, sizeof value);
        return *this;
    }
    /// Into the body of the n-th chunk of that name, n from 0.
    template <class T>
    Damage& put(const std::string& chunk, int n, std::size_t offset, T value) {
        return put(find(chunk, n) + 8 + offset, value);
    }
    Damage& rename(const std::string& chunk, int n) {
        bytes_.replace(find(chunk, n), 4, "gone");
        return *this;
    }
    Damage& cut(std::size_t length) { return bytes_.resize(length), *this; }
    const std::string& bytes() const { return bytes_; }

private:
    std::size_t find(const std::string& chunk, int n) const {
        std::size_t at = bytes_.find(chunk);
        for (; n > 0; --n) at = bytes_.find(chunk, at + 4);
        return at;
    }

    std::string bytes_;
};

constexpr std::size_t kOuterSize = 4;
constexpr std::size_t kVersion = 20;
constexpr std::size_t kFileCount = 28;
constexpr std::size_t kPadCount = 32;
// In the body of a pad's grains: pad, count, running index, then the record.
constexpr std::size_t kFirstBinFile = 12;
constexpr std::size_t kFirstBinGrain = 16;
// In the body of a pad's settings, behind its index.
constexpr std::size_t kVolume = 4 + 56;

struct Fault {
    std::string bytes;
    std::string reason;
};

std::vector<Fault> faultsOf(const std::string& whole) {
    const auto of = [&] { return Damage(whole); };
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    return {{"nonsense", "it isn't a project"},
            {"", "it isn't a project"},
            {of().put(0, 'X').bytes(), "it isn't a project"},
            {of().put(kOuterSize, 0).bytes(), "its saving was never finished"},
            {of().cut(whole.size() - 100).bytes(), "it is cut short: 100 bytes are missing"},
            {of().put(kVersion, 2).bytes(), "it is of version 2; this program reads version 1"},
            {of().put(kFileCount, 17).bytes(), "it claims 17 files"},
            {of().put(kFileCount, -1).bytes(), "it claims -1 files"},
            {of().put(kPadCount, 15).bytes(), "it claims 15 pads; a project has 16"},
            {of().rename("comn", 0).bytes(), "its \"comn\" chunk is missing"},
            {of().rename("keym", 0).bytes(), "its \"keym\" chunk is missing"},
            {of().put(kFileCount, 3).bytes(), "file 3 of it is missing"},
            {of().rename("pevt", 15).bytes(), "pad 16 of it is missing"},
            {of().put("pdtr", 4, kVolume, kNan).bytes(),
             "it is damaged: a value in it is none that a project has"}};
}

TEST(ProjectInfo, TellsFilesPadsAndKeys) {
    const Studio studio;
    studio.script(
        "connect 48000 2 mix\nLoadFileToPad 0 \"a loop\" a.wav\nLoadFileToBin b b.wav\nSetPadVolume 0 0.5\n"
        "SetPadSolo 4 1\nSetPadChannel 4 2\nSetPadOutput 0 9\nSetKeyMapEntry 4 48 61 50 1 126\n"
        "SetAuditionEnabled 1\nSaveProject p\n");
    const CliRun run = marnoth({"info", studio.name("p.mrn")});
    ASSERT_EQ(run.status, 0) << run.err;
    // One second of stereo floats at 48000 Hz: 384000 bytes.
    for (const char* part :
         {"of them audio\naudition  on\nfiles     2\n   1      a loop\n",
          "format  float, 2 channels, 48000 Hz\n",
          "length  48000 frames, 1.000 s, 2.0000 beats at 120.00 BPM\n", "audio   384000 bytes\n",
          "   2      b\n", "pads      2 in use\n",
          "2.0000 beats, looping, synced, one-shot, volume 0.500, pan 0.500, output 9, channel any",
          "   5      0 grains, 0.0000 beats, one-shot, solo, volume 1.000, pan 0.500, output mix, channel "
          "3\n",
          "keys      16\n   1      C5\n", "   5      C4 to C#5, root D4, velocities 1 to 126\n",
          "  16      D7\n"})
        EXPECT_NE(run.out.find(part), std::string::npos) << part << "\n" << run.out;
    EXPECT_NE(run.out.find("size      " + std::to_string(fs::file_size(studio.folder / "p.mrn")) +
                           " bytes, 768000 of them audio"),
              std::string::npos)
        << run.out;
    EXPECT_NE(run.out.find("path    "), std::string::npos);
}

TEST(ProjectInfo, TellsTheSameAsJson) {
    const Studio studio;
    studio.script(
        "connect 48000 2 mix\nLoadFileToPad 0 \"a loop\" a.wav\nSetPadPan 0 0.25\nSetPadMute 0 1\n"
        "SetKeyMapEntry 4 48 61 50 1 126\nSaveProject p\n");
    const CliRun run = marnoth({"info", studio.name("p.mrn"), "--json"});
    ASSERT_EQ(run.status, 0) << run.err;
    for (const char* part :
         {"\"auditionEnabled\": false", "\"name\": \"a loop\"", "\"rate\": 48000", "\"frames\": 48000",
          "\"seconds\": 1.0", "\"beats\": 2.0", "\"tempo\": 120.0", "\"audioBytes\": 384000", "\"pan\": 0.25",
          "\"mute\": true", "\"solo\": false", "\"channel\": null", "\"low\": \"C4\"", "\"high\": \"C#5\"",
          "\"root\": \"D4\"", "\"highVelocity\": 126"})
        EXPECT_NE(run.out.find(part), std::string::npos) << part << "\n" << run.out;
}

/// Two loops, of which only the one on pad 1 has a root note, and what is told of them.
class Roots {
public:
    explicit Roots(int note, const std::string& more = {}) {
        steady(0.25)
            .acid({.flags = 2, .root = static_cast<std::int16_t>(note), .beats = 2})
            .write(studio.folder / "rooted.wav");
        studio.script("connect 44100 2 mix\nLoadFileToPad 0 rooted rooted.wav\nLoadFileToBin a a.wav\n" +
                      more + "SaveProject p\n");
    }
    std::string told(const std::string& file) const { return marnoth({"info", studio.name(file)}).out; }
    /// How often the JSON of a file names a root so.
    int named(const std::string& file, const std::string& root) const {
        const std::string json = marnoth({"info", studio.name(file), "--json"}).out;
        const std::string field = "\"rootNote\": " + root;
        int count = 0;
        for (auto at = json.find(field); at != json.npos; at = json.find(field, at + 1)) ++count;
        return count;
    }

    Studio studio;
};

TEST(ProjectInfo, NamesTheRootOfALoopAsTheLoopItselfDoes) {
    const char* const names[] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B"};
    for (int above = 0; above < 12; ++above) {
        const Roots roots(60 + above);
        const std::string ending = std::string(", root note ") + names[above] + "\n";
        EXPECT_NE(roots.told("rooted.wav").find(ending), std::string::npos) << roots.told("rooted.wav");
        // The file, and the pad that it was laid on.
        const std::string project = roots.told("p.mrn");
        EXPECT_NE(project.find("BPM" + ending), std::string::npos) << project;
        EXPECT_NE(project.find("channel any" + ending), std::string::npos) << project;
        const std::string quoted = std::string("\"") + names[above] + "\"";
        EXPECT_EQ(roots.named("rooted.wav", quoted), 1);
        EXPECT_EQ(roots.named("p.mrn", quoted), 2);
    }
}

TEST(ProjectInfo, NamesARootThatWasSetByHandByTheSameScale) {
    const Roots roots(61, "SetPadRootNote 4 6\nSetPadRootNote 5 40\n");
    EXPECT_EQ(roots.named("p.mrn", "\"C\""), 1);
    EXPECT_EQ(roots.named("p.mrn", "\"40\""), 1) << "what is no note is its number";
}

TEST(ProjectInfo, AFileThatDoesNotFollowTheKeyHasNoRoot) {
    const Roots roots(60);
    EXPECT_EQ(roots.named("a.wav", "null"), 1);
    EXPECT_EQ(roots.named("p.mrn", "null"), 1);
    EXPECT_NE(roots.told("p.mrn").find("beats at 120.00 BPM\n"), std::string::npos) << roots.told("p.mrn");
}

TEST(ProjectInfo, AnEmptyProjectHasNoPadsInUse) {
    const Studio studio;
    studio.script("SaveProject p\n");
    const CliRun run = marnoth({"info", studio.name("p.mrn")});
    EXPECT_NE(run.out.find("files     0\npads      none in use\nkeys      16\n"), std::string::npos)
        << run.out << run.err;
}

TEST(ProjectInfo, GoesByWhatAFileHolds) {
    const Studio studio;
    studio.save("p.mrn");
    writeText(studio.folder / "p.wav", studio.bytes("p.mrn"));
    writeText(studio.folder / "wrapped", std::string(24, 'w') + studio.bytes("p.mrn"));
    writeText(studio.folder / "a.mrn", studio.bytes("a.wav"));
    for (const char* name : {"p.wav", "wrapped"})
        EXPECT_TRUE(marnoth({"info", studio.name(name)}).out.starts_with("project   ")) << name;
    EXPECT_NE(marnoth({"info", studio.name("a.mrn")}).out.find("44100 frames, 1.000 s"), std::string::npos);
}

TEST(ProjectInfo, TakesAWrapperWhereARenderDoes) {
    const Studio studio;
    studio.save("p.mrn");
    const std::string wrapped = std::string(24, 'w') + studio.bytes("p.mrn");
    const auto runs = [&](const char* name) {
        writeText(studio.folder / name, wrapped);
        return std::vector{marnoth({"info", studio.name(name)}), studio.play(name, "out.wav")};
    };
    for (const CliRun& run : runs("wrapped")) EXPECT_EQ(run.status, 0) << run.err;
    // With a "." in its name a file has none.
    for (const CliRun& run : runs("wrapped.mrn")) {
        EXPECT_EQ(run.status, 1) << run.out;
        EXPECT_NE(run.err.find("wrapped.mrn: it isn't a project\n"), std::string::npos) << run.err;
    }
}

TEST(ProjectInfo, HostileNamesStayInTheirLine) {
    const Studio studio;
    studio.script("connect 44100 2 mix\nLoadFileToBin \"x\x1B[31my\" a.wav\nSaveProject p\n");
    EXPECT_NE(marnoth({"info", studio.name("p.mrn")}).out.find("\n   1      x [31my\n"), std::string::npos);
}

TEST(ProjectFailure, ADamagedFileGetsOneLineWithTheReason) {
    const Studio studio;
    studio.save("p.mrn");
    for (const Fault& fault : faultsOf(studio.bytes("p.mrn"))) {
        writeText(studio.folder / "bad.mrn", fault.bytes);
        for (const CliRun& run :
             {marnoth({"info", studio.name("bad.mrn")}), studio.play("bad.mrn", "bad.wav")}) {
            EXPECT_EQ(run.status, 1) << fault.reason;
            EXPECT_EQ(run.out, "");
            EXPECT_NE(run.err.find("bad.mrn: " + fault.reason), std::string::npos) << run.err;
            EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        }
        EXPECT_FALSE(studio.has("bad.wav")) << fault.reason;
    }
}

TEST(ProjectFailure, AMissingFileGetsItsReason) {
    const Studio studio;
    for (const CliRun& run :
         {marnoth({"info", studio.name("none.mrn")}), studio.play("none.mrn", "out.wav")}) {
        EXPECT_EQ(run.status, 1);
        EXPECT_NE(run.err.find("none.mrn: there is no such file\n"), std::string::npos) << run.err;
    }
}

TEST(ProjectFailure, AGrainBelowZeroIsDamageToo) {
    const Studio studio;
    studio.save("p.mrn");
    writeText(studio.folder / "bad.mrn",
              Damage(studio.bytes("p.mrn")).put("pevt", 0, kFirstBinGrain, -1).bytes());
    for (const CliRun& run : {marnoth({"info", studio.name("bad.mrn")}), studio.play("bad.mrn", "bad.wav")}) {
        EXPECT_EQ(run.status, 1);
        EXPECT_NE(
            run.err.find("bad.mrn: it is damaged: a value in it is none that a project has (grain of the "
                         "Loop Bin of grain 1 of pad 1: -1)\n"),
            std::string::npos)
            << run.err;
    }
}

TEST(ProjectScript, LoadsOfDamagedFilesLeaveAnEmptyProject) {
    const Studio studio;
    studio.save("p.mrn");
    for (const Fault& fault : faultsOf(studio.bytes("p.mrn"))) {
        writeText(studio.folder / "bad.mrn", fault.bytes);
        EXPECT_EQ(studio.script("connect 44100 2 mix\nLoadFileToPad 0 a a.wav\nSetKeyMapEntry 0 1 2 3 4 5\n"
                                "LoadProject bad.mrn\nGetBinFileCount\nGetGrainCount 1 0\nGetKeyMapEntry 0\n"
                                "LoadProject p.mrn\nGetBinFileCount\n"),
                  "connect 44100 2 mix -> 00000000\n"
                  "LoadFileToPad 0 a a.wav -> 00000000 0 0\n"
                  "SetKeyMapEntry 0 1 2 3 4 5 -> 00000000\n"
                  "LoadProject bad.mrn -> 80004005\n"
                  "GetBinFileCount -> 00000000 0\n"
                  "GetGrainCount 1 0 -> 00000000 0\n"
                  "GetKeyMapEntry 0 -> 00000000 0 60 60 60 0 127\n"
                  "LoadProject p.mrn -> 00000000\n"
                  "GetBinFileCount -> 00000000 2\n")
            << fault.reason;
    }
}

TEST(ProjectScript, AGrainOfAFileThatIsNotThereIsDroppedAndTheRestLoads) {
    const Studio studio;
    studio.save("p.mrn");
    // Pad 0 has four grains for each of its two beats, all of file 0; pad 2 those of file 1; there is no
    // file 2.
    writeText(studio.folder / "less.mrn",
              Damage(studio.bytes("p.mrn")).put("pevt", 0, kFirstBinFile, 2).bytes());
    EXPECT_EQ(
        studio.script("connect 44100 2 mix\nLoadProject p.mrn\nGetGrainCount 1 0\nLoadProject less.mrn\n"
                      "GetGrainCount 1 0\nGetGrainSource 0 0\nGetGrainCount 1 2\nGetBinFileCount\n"),
        "connect 44100 2 mix -> 00000000\n"
        "LoadProject p.mrn -> 00000000\n"
        "GetGrainCount 1 0 -> 00000000 8\n"
        "LoadProject less.mrn -> 00000000\n"
        "GetGrainCount 1 0 -> 00000000 7\n"
        "GetGrainSource 0 0 -> 00000000 0 1\n"
        "GetGrainCount 1 2 -> 00000000 8\n"
        "GetBinFileCount -> 00000000 2\n");
}

TEST(ProjectScript, AGrainBelowZeroRaisesTheExceptionAndLeavesAnEmptyProject) {
    const Studio studio;
    studio.save("p.mrn");
    writeText(studio.folder / "bad.mrn",
              Damage(studio.bytes("p.mrn")).put("pevt", 0, kFirstBinGrain, -1).bytes());
    EXPECT_EQ(studio.script("connect 44100 2 mix\nLoadProject bad.mrn\nGetBinFileCount\nGetKeyMapEntry 1\n"),
              "connect 44100 2 mix -> 00000000\n"
              "LoadProject bad.mrn -> exception\n"
              "GetBinFileCount -> 00000000 0\n"
              "GetKeyMapEntry 1 -> 00000000 1 62 62 62 0 127\n");
}

TEST(ProjectScript, AStreamThatBreaksOffLeavesAnEmptyProject) {
    const Studio studio;
    studio.script("connect 44100 2 mix\nLoadFileToPad 0 a a.wav\nsave-stream whole.bin\n");
    const std::string whole = studio.bytes("whole.bin");
    // A version word of 24 bytes, then the form.
    ASSERT_EQ(whole.substr(24, 4), "RIFF");
    writeText(studio.folder / "cut.bin", whole.substr(0, whole.size() / 2));
    writeText(studio.folder / "short.bin", whole.substr(0, 23));
    EXPECT_EQ(studio.script("connect 44100 2 mix\nload-stream whole.bin\nload-stream short.bin\n"
                            "GetBinFileCount\nload-stream cut.bin\nGetBinFileCount\nGetGrainCount 1 0\n"),
              "connect 44100 2 mix -> 00000000\n"
              "load-stream whole.bin -> 00000000\n"
              "load-stream short.bin -> 8004022f\n"
              "GetBinFileCount -> 00000000 1\n"
              "load-stream cut.bin -> 80004005\n"
              "GetBinFileCount -> 00000000 0\n"
              "GetGrainCount 1 0 -> 00000000 0\n");
}

TEST(ProjectScript, TheStreamIsAVersionWordAndTheFormOfAFile) {
    const Studio studio;
    studio.script("connect 44100 2 mix\nLoadFileToPad 0 a a.wav\nsave-stream s.bin\nSaveProject p\n");
    const std::string word(
        "0\0"
        "0\0"
        "0\0"
        "0\0"
        "0\0"
        "0\0"
        "0\0"
        "0\0"
        "0\0"
        "0\0"
        "0\0"
        " \0",
        24);
    EXPECT_EQ(studio.bytes("s.bin"), word + studio.bytes("p.mrn"));
}

TEST(ProjectScript, AStreamFileThatIsNotThereEndsTheRun) {
    const Studio studio;
    const CliRun run =
        runScriptText(studio.folder, "GetBinFileCount\nload-stream none.bin\nGetBinFileCount\n");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "GetBinFileCount -> 00000000 0\n");
    EXPECT_NE(run.err.find("test.mrs:2: none.bin: it can't be opened\n"), std::string::npos) << run.err;
}

TEST(ProjectScript, AStreamFileThatCannotBeWrittenIsAFailure) {
    const Studio studio;
    const CliRun run =
        runScriptText(studio.folder, "connect 44100 2 mix\nrender 10\nsave-stream none/s.bin\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("none/s.bin: it can't be created"), std::string::npos) << run.err;
    EXPECT_EQ(studio.audio("out/mix.wav").samples.size(), 20u);
}

}  // namespace
}  // namespace marnoth::test::project_files_test
