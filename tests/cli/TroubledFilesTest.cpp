#include <gtest/gtest.h>

#include <limits>

#include "cli/Studio.h"
#include "shellkit/MidiBytes.h"

namespace marnoth::test::troubled_files_test {
namespace {

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// A second of audio without its last 10000 frames, of 8 bytes each.
WaveFile cutShort() {
    const WaveFile whole = WaveFile().floats().channels(2).frames(44100, [](auto, int) { return 0.25; });
    return WaveFile(whole).truncate(whole.bytes().size() - 80000);
}

WaveFile fromAPipe() {
    return WaveFile()
        .floats()
        .channels(2)
        .frames(44100, [](auto, int) { return 0.25; })
        .claim("data", 0)
        .claim("RIFF", 0);
}

constexpr const char* kCutWarning = "it is cut short: 80000 bytes are missing; what is there is taken";
constexpr const char* kPipeWarning = "it doesn't say how long it is; what is there is taken";

TEST(TroubledFiles, RenderPlaysThemAsFarAsTheyGoAndSaysSo) {
    const Studio studio;
    cutShort().write(studio.folder / "cut.wav");
    fromAPipe().write(studio.folder / "pipe.wav");
    const CliRun run = studio.render({"--pad", studio.pad(1, "cut.wav"), "--pad", studio.pad(2, "pipe.wav"),
                                      "--beats", "4", "--out", studio.name("out.wav")});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(holds(run.err, "warning: " + studio.name("cut.wav") + ": " + kCutWarning)) << run.err;
    EXPECT_TRUE(holds(run.err, "warning: " + studio.name("pipe.wav") + ": " + kPipeWarning)) << run.err;
    // 34100 frames are left of the one, 44100 there are of the other.
    const WaveFrames audio = studio.audio("out.wav");
    EXPECT_NEAR(audio.samples[2 * 30000], 0.5f, 1e-3);
    EXPECT_NEAR(audio.samples[2 * 40000], 0.25f, 1e-3);
}

TEST(TroubledFiles, InfoTellsWhatIsWrong) {
    const Studio studio;
    cutShort().write(studio.folder / "cut.wav");
    EXPECT_TRUE(
        holds(marnoth({"info", studio.name("cut.wav")}).out, std::string("warning   ") + kCutWarning));
    EXPECT_TRUE(
        holds(marnoth({"info", "--json", studio.name("cut.wav")}).out, std::string("\"") + kCutWarning));
    EXPECT_TRUE(holds(marnoth({"info", "--json", studio.name("a.wav")}).out, "\"warnings\": []"));
    EXPECT_FALSE(holds(marnoth({"info", studio.name("a.wav")}).out, "warning"));
}

TEST(TroubledFiles, InfoCountsSamplesThatAreNoNumbers) {
    const Studio studio;
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    const std::vector<float> samples{0, kNan, 0.5f, kNan, 0, std::numeric_limits<float>::infinity()};
    WaveFile().floats().values(samples).write(studio.folder / "nan.wav");
    const std::string warning = "3 samples are not numbers (NaN or infinite)";
    EXPECT_TRUE(holds(marnoth({"info", studio.name("nan.wav")}).out, "warning   " + warning));
    ASSERT_EQ(studio
                  .render({"--pad", studio.pad(1, "nan.wav"), "--beats", "1", "--out", studio.name("out.wav"),
                           "--save", studio.name("nan.mrn")})
                  .status,
              0);
    EXPECT_TRUE(holds(marnoth({"info", studio.name("nan.mrn")}).out, "warning " + warning));
    EXPECT_TRUE(holds(marnoth({"info", "--json", studio.name("nan.mrn")}).out, "\"" + warning));
}

TEST(TroubledFiles, ScriptsReadThemWhenTheyAreToldTo) {
    const Studio studio;
    fromAPipe().write(studio.folder / "pipe.wav");
    EXPECT_EQ(studio.script("LoadFileToBin pipe pipe.wav\n"
                            "lenient on\n"
                            "LoadFileToBin pipe pipe.wav\n"
                            "lenient off\n"),
              "LoadFileToBin pipe pipe.wav -> 80070057 0 0\n"
              "lenient on -> 00000000\n"
              "LoadFileToBin pipe pipe.wav -> 00000000 0 0\n"
              "lenient off -> 00000000\n");
    EXPECT_EQ(runScriptText(studio.folder, "lenient maybe\n").status, 2);
}

TEST(TroubledFiles, AFileOfAnotherKindIsTold) {
    const Studio studio;
    writeText(studio.folder / "a.flac", "fLaC and what follows");
    const CliRun run = studio.render({"--pad", studio.pad(1, "a.flac"), "--out", studio.name("out.wav")});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(holds(run.err, "a.flac: FLAC files aren't read; save it as a plain WAV file")) << run.err;
    EXPECT_TRUE(holds(marnoth({"info", studio.name("a.flac")}).err, "FLAC files aren't read"));
}

/// What a render says of a file without loop data on pad 2.
std::string saidOfPlain(const Studio& studio, std::vector<std::string> more) {
    WaveFile().frames(1000).write(studio.folder / "plain.wav");
    std::vector<std::string> words{"--pad", studio.pad(2, "plain.wav"), "--beats", "1",
                                   "--out", studio.name("out.wav")};
    words.insert(words.end(), more.begin(), more.end());
    const CliRun run = studio.render(words);
    EXPECT_EQ(run.status, 0) << run.err;
    return run.err;
}

TEST(PlainFiles, AreToldWhereTheRenderFollowsATempo) {
    const Studio studio;
    const std::string told =
        "note: " + studio.name("plain.wav") + ": without loop data a file doesn't follow the tempo";
    EXPECT_FALSE(holds(saidOfPlain(studio, {}), told));
    EXPECT_TRUE(holds(saidOfPlain(studio, {"--tempo", "100"}), told));
    EXPECT_TRUE(
        holds(saidOfPlain(studio, {"--tempo", "100"}), "it plays once from beat 0, at its own speed"));
    EXPECT_TRUE(holds(saidOfPlain(studio, {"--pad", studio.pad(1, "a.wav")}), told));
}

TEST(PlainFiles, LoopsAndFilesThatAreMarkedAsOneShotsAreNot) {
    const Studio studio;
    WaveFile().frames(1000).acid({.flags = 1}).write(studio.folder / "shot.wav");
    const CliRun run = studio.render({"--pad", studio.pad(1, "a.wav"), "--pad", studio.pad(2, "shot.wav"),
                                      "--beats", "1", "--out", studio.name("out.wav")});
    EXPECT_EQ(run.err, "");
}

#ifndef _WIN32

TEST(UnansweredNotes, AreToldByARender) {
    const Studio studio;
    // Pad 1 answers 60; 62 is pad 2's, where nothing lies.
    WaveFile::writeBytes(studio.folder / "a.mid",
                         midi(96, {0,  0x90, 60, 1, 24, 0x80, 60, 0, 0,  0x90, 62, 1,
                                   24, 0x80, 62, 0, 0,  0x90, 24, 1, 24, 0x80, 24, 0}));
    const auto said = [&](std::vector<std::string> more) {
        std::vector<std::string> words{"--pad", studio.pad(1, "a.wav"), "--midi", studio.name("a.mid"),
                                       "--out", studio.name("out.wav")};
        words.insert(words.end(), more.begin(), more.end());
        return studio.render(words).err;
    };
    EXPECT_TRUE(holds(said({}), "a.mid: 2 notes on keys that no pad answers: C2 to D5")) << said({});
    EXPECT_FALSE(holds(said({"--beats", "0.25"}), "notes")) << "what comes behind the end";
}

#endif

}  // namespace
}  // namespace marnoth::test::troubled_files_test
