#include <gtest/gtest.h>

#include "cli/CliRun.h"
#include "shellkit/MidiBytes.h"
#include "shellkit/media/WaveFrames.h"

namespace marnoth::test::midi_render_test {
namespace {

#ifdef _WIN32

TEST(MidiRender, IsRefusedInOneLine) {
    const CliRun run = marnoth({"render", "--pad", "1=a.wav", "--midi", "a.mid", "--out", "b.wav"});
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("--midi needs a build for Linux"), std::string::npos) << run.err;
}

#else

TEST(MidiRender, ANoteStartsALoopAndTheNextOneEndsIt) {
    const TempFolder folder;
    WaveFile()
        .floats()
        .channels(2)
        .frames(22050, [](auto, int) { return 0.25; })
        .acid({.beats = 1})
        .write(folder / "a.wav");
    // On from beat 1, off at beat 2, at 120.
    WaveFile::writeBytes(folder / "a.mid",
                         midi(24, {24, 0x90, 60, 1, 6, 0x80, 60, 0, 18, 0x90, 60, 1, 6, 0x80, 60, 0}));
    const CliRun run = marnoth({"render", "--pad", "1=" + folder.name("a.wav"), "--midi",
                                folder.name("a.mid"), "--out", folder.name("out.wav")});
    ASSERT_EQ(run.status, 0) << run.err;
    const WaveFrames wave = readWaveFrames(folder / "out.wav");
    ASSERT_EQ(wave.samples.size() / 2, 4 * 22050u);
    const auto at = [&](double beat) { return wave.samples[2 * static_cast<std::size_t>(beat * 22050)]; };
    EXPECT_EQ(at(0.5), 0.0f);
    EXPECT_NEAR(at(1.1), 0.25, 1e-3);
    EXPECT_NEAR(at(1.9), 0.25, 1e-3);
    EXPECT_EQ(at(2.2), 0.0f);
    EXPECT_EQ(at(3.5), 0.0f);
}

TEST(MidiRender, WithGatesANoteLastsAsLongAsItIsHeld) {
    const TempFolder folder;
    WaveFile()
        .floats()
        .channels(2)
        .frames(22050, [](auto, int) { return 0.25; })
        .acid({.beats = 1})
        .write(folder / "a.wav");
    WaveFile::writeBytes(folder / "a.mid", midi(24, {24, 0x90, 60, 1, 24, 0x80, 60, 0}));
    const CliRun run = marnoth({"render", "--pad", "1=" + folder.name("a.wav"), "--midi",
                                folder.name("a.mid"), "--gate", "--out", folder.name("out.wav")});
    ASSERT_EQ(run.status, 0) << run.err;
    const WaveFrames wave = readWaveFrames(folder / "out.wav");
    const auto at = [&](double beat) { return wave.samples[2 * static_cast<std::size_t>(beat * 22050)]; };
    EXPECT_EQ(at(0.5), 0.0f);
    EXPECT_NEAR(at(1.5), 0.25, 1e-3);
    EXPECT_EQ(at(2.1), 0.0f);
}

#endif

}  // namespace
}  // namespace marnoth::test::midi_render_test
