#include <gtest/gtest.h>

#include <algorithm>

#include "cli/Studio.h"
#include "shellkit/midi/MidiFile.h"

namespace marnoth::test::project_render_test {
namespace {

namespace fs = std::filesystem;

TEST(ProjectRender, GivesTheAudioOfTheRenderThatSavedIt) {
    const Studio studio;
    studio.save("p.mrn", {"--stems", studio.name("stems")});
    const CliRun run = studio.play("p.mrn", "again.wav", {"--stems", studio.name("again")});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(studio.bytes("saved.wav"), studio.bytes("again.wav"));
    EXPECT_NEAR(studio.audio("again.wav").samples.at(20000), 0.375, 1e-3);
    for (const char* stem : {"/pad01.wav", "/pad03.wav"}) {
        EXPECT_TRUE(studio.has(std::string("again") + stem)) << stem;
        EXPECT_EQ(studio.bytes(std::string("stems") + stem), studio.bytes(std::string("again") + stem))
            << stem;
    }
    EXPECT_FALSE(studio.has("again/pad02.wav"));
}

/// A bar of 4/4 at 90 beats a minute: two notes of a beat on pads 1 and 3.
std::string smallMidi() {
    const std::string track = std::string("\0\xFF\x51\x03\x0A\x2C\x2B", 7) +
                              std::string("\0\x90\x3C\x64", 4) + std::string("\x60\x80\x3C\x40", 4) +
                              std::string("\0\x90\x40\x64", 4) + std::string("\x60\x80\x40\x40", 4) +
                              std::string("\0\xFF\x2F\0", 4);
    return std::string("MThd\0\0\0\x06\0\0\0\x01\0\x60", 14) + std::string("MTrk\0\0\0", 7) +
           static_cast<char>(track.size()) + track;
}

TEST(ProjectRender, GivesTheAudioOfARenderOfAMidiFile) {
    const Studio studio;
    writeText(studio.folder / "m.mid", smallMidi());
    const std::vector<std::string> music{"--midi", studio.name("m.mid"), "--gate"};
    const auto withStems = [&](const char* folder) {
        std::vector<std::string> words = music;
        words.insert(words.end(), {"--stems", studio.name(folder)});
        return words;
    };
    studio.save("p.mrn", withStems("stems"));
    const CliRun run = studio.play("p.mrn", "again.wav", withStems("again"));
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(studio.bytes("saved.wav"), studio.bytes("again.wav"));
    for (const char* stem : {"/pad01.wav", "/pad03.wav"})
        EXPECT_EQ(studio.bytes(std::string("stems") + stem), studio.bytes(std::string("again") + stem))
            << stem;
    // Four beats at 90 are 117600 frames, 20 ms for what fades 882; pad 1 sounds in the first, pad 3 in the
    // second.
    const WaveFrames mix = studio.audio("again.wav");
    ASSERT_EQ(mix.samples.size(), 2 * (117600u + 882));
    EXPECT_GT(mix.samples.at(2 * 15000), 0.2f);
    EXPECT_GT(mix.samples.at(2 * 45000), 0.1f);
    EXPECT_LT(mix.samples.at(2 * 45000), 0.2f);
    EXPECT_EQ(mix.samples.at(2 * 100000), 0.0f);
}

TEST(ProjectRender, LaysPadsOnTop) {
    const Studio studio;
    studio.save("p.mrn");
    steady(0.0625).write(studio.folder / "c.wav");
    ASSERT_EQ(
        studio.play("p.mrn", "top.wav", {"--pad", studio.pad(3, "c.wav"), "--pad", studio.pad(5, "b.wav")})
            .status,
        0);
    EXPECT_NEAR(studio.audio("top.wav").samples.at(20000), 0.25 + 0.0625 + 0.125, 1e-3);
}

TEST(ProjectRender, PlaysAProjectAtAnotherRate) {
    const Studio studio;
    studio.save("p.mrn");
    ASSERT_EQ(studio.play("p.mrn", "other.wav", {"--rate", "48000", "--beats", "2"}).status, 0);
    const WaveFrames wave = studio.audio("other.wav");
    EXPECT_EQ(wave.rate, 48000u);
    ASSERT_EQ(wave.samples.size(), 2 * 48000u);
    // Behind the fade of 48 frames and before that of 960.
    for (std::size_t frame = 48; frame < 47000; ++frame)
        ASSERT_NEAR(wave.samples[2 * frame], 0.375, 1e-3) << frame;
}

TEST(ProjectRender, HoldsEachLoadedPadOnceWhateverItAnswers) {
    const Studio studio;
    // Pad 0 answers nothing that pad 2 doesn't, and not untransposed; pad 2 waits for channel 10, and for a
    // velocity that a held note hasn't.
    studio.script(
        "connect 44100 2 mix\nLoadFileToPad 0 a a.wav\nLoadFileToPad 2 b b.wav\nSetKeyMapEntry 0 60 62 50 0 "
        "127\n"
        "SetKeyMapEntry 2 0 127 64 1 9\nSetPadChannel 2 9\nSaveProject p\n");
    ASSERT_EQ(studio.play("p.mrn", "held.wav").status, 0);
    const WaveFrames wave = studio.audio("held.wav");
    for (std::size_t frame = 44; frame < 43000; ++frame)
        ASSERT_NEAR(wave.samples[2 * frame], 0.375, 1e-3) << frame;
}

TEST(ProjectRender, KeepsMutesAndSolosOfTheProject) {
    const Studio studio;
    studio.script(
        "connect 44100 2 mix\nLoadFileToPad 0 a a.wav\nLoadFileToPad 2 b b.wav\nSetPadSolo 2 1\nSaveProject "
        "p\n");
    ASSERT_EQ(studio.play("p.mrn", "solo.wav").status, 0);
    EXPECT_NEAR(studio.audio("solo.wav").samples.at(20000), 0.125, 1e-3);
}

TEST(ProjectSave, TellsWhereTheProjectWent) {
    const Studio studio;
    const CliRun run = studio.render({"--pad", studio.pad(1, "a.wav"), "--beats", "1", "--out",
                                      studio.name("out.wav"), "--save", studio.name("groove")});
    EXPECT_EQ(run.status, 0) << run.err;
    // A second of stereo floats is 352800 bytes.
    EXPECT_NE(run.out.find("\n" + studio.name("groove.mrn") + ": the project, 0.4 MB\n"), std::string::npos)
        << run.out;
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 2) << run.out;
    EXPECT_TRUE(studio.has("groove.mrn"));
    EXPECT_FALSE(studio.has("groove"));
}

TEST(ProjectSave, KeepsWhatWasAskedForAndNotWhatTheRenderNeeded) {
    const Studio studio;
    studio.save("plain.mrn", {"--stems", studio.name("stems")});
    studio.save("gated.mrn", {"--gate"});
    const std::string text =
        "GetPadOneShot 0\nGetPadOutput 0\nGetPadChannel 0\nGetKeyMapEntry 0\nGetKeyMapEntry 2\n";
    const std::string same =
        "GetPadOutput 0 -> 00000000 0\nGetPadChannel 0 -> 00000000 -1\n"
        "GetKeyMapEntry 0 -> 00000000 0 60 60 60 0 127\n"
        "GetKeyMapEntry 2 -> 00000000 2 64 64 64 0 127\n";
    EXPECT_EQ(studio.script("connect 44100 2 mix\nLoadProject plain.mrn\n" + text),
              "connect 44100 2 mix -> 00000000\nLoadProject plain.mrn -> 00000000\nGetPadOneShot 0 -> "
              "00000000 1\n" +
                  same);
    EXPECT_EQ(studio.script("connect 44100 2 mix\nLoadProject gated.mrn\n" + text),
              "connect 44100 2 mix -> 00000000\nLoadProject gated.mrn -> 00000000\nGetPadOneShot 0 -> "
              "00000000 0\n" +
                  same);
}

TEST(ProjectSave, KeepsAProjectAsItWasLoaded) {
    const Studio studio;
    studio.script(
        "connect 44100 2 mix\nLoadFileToPad 0 a a.wav\nSetPadOutput 0 7\nSetPadChannel 0 3\nSetPadVolume 0 "
        "0.5\n"
        "SetKeyMapEntry 0 40 50 45 1 126\nSaveProject p\n");
    ASSERT_EQ(
        studio.play("p.mrn", "out.wav", {"--stems", studio.name("stems"), "--save", studio.name("q")}).status,
        0);
    EXPECT_EQ(studio.bytes("q.mrn"), studio.bytes("p.mrn"));
}

TEST(ProjectSave, ReplacesAFileOfThatName) {
    const Studio studio;
    writeText(studio.folder / "p.mrn", "what was there before");
    studio.save("p.mrn");
    EXPECT_TRUE(studio.bytes("p.mrn").starts_with("RIFF"));
    EXPECT_FALSE(studio.has("p.mrn.bak"));
}

TEST(ProjectSave, AFailedRenderLeavesWhatWasThere) {
    const Studio studio;
    writeText(studio.folder / "p.mrn", "what was there before");
    EXPECT_EQ(studio
                  .render({"--pad", studio.pad(1, "none.wav"), "--out", studio.name("out.wav"), "--save",
                           studio.name("p.mrn")})
                  .status,
              1);
    EXPECT_EQ(studio.bytes("p.mrn"), "what was there before");
    EXPECT_FALSE(studio.has("p.mrn.bak"));
}

TEST(ProjectSave, APlaceThatCannotBeIsToldBeforeTheRender) {
    const Studio studio;
    fs::create_directories(studio.folder / "folder.mrn");
    const std::vector<std::pair<std::string, std::string>> reasons{
        {"none/p", "p.mrn: its folder doesn't exist"}, {"folder", "folder.mrn: a folder has that name"}};
    for (const auto& [place, reason] : reasons) {
        const CliRun run = studio.render({"--pad", studio.pad(1, "a.wav"), "--beats", "1", "--out",
                                          studio.name("out.wav"), "--save", studio.name(place)});
        EXPECT_EQ(run.status, 1) << place;
        EXPECT_NE(run.err.find(reason), std::string::npos) << run.err;
        EXPECT_FALSE(studio.has("out.wav")) << place;
    }
}

TEST(ProjectSave, ANameThatALoadWouldCutIsRefused) {
    const Studio studio;
    // The instrument takes 259 characters of a path.
    const std::string deep = "folder/" + std::string(100, 'x') + "/" + std::string(150, 'y');
    fs::create_directories((studio.folder / deep).parent_path());
    const CliRun run = studio.render({"--pad", studio.pad(1, "a.wav"), "--beats", "1", "--out",
                                      studio.name("out.wav"), "--save", studio.name(deep)});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("the instrument takes 259;"), std::string::npos) << run.err;
    EXPECT_EQ(studio.play(deep + ".mrn", "out.wav").status, 1);
}

TEST(ProjectSave, TheAudioGoesElsewhere) {
    const Studio studio;
    const CliRun run = studio.render({"--pad", studio.pad(1, "a.wav"), "--beats", "1", "--out",
                                      studio.name("p.mrn"), "--save", studio.name("p")});
    EXPECT_EQ(run.status, 2);
    EXPECT_FALSE(studio.has("p.mrn"));
}

}  // namespace
}  // namespace marnoth::test::project_render_test
