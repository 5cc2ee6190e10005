#include <gtest/gtest.h>

#include "cli/CliRun.h"
#include "shellkit/MidiBytes.h"
#include "shellkit/media/WaveFrames.h"

namespace marnoth::test::midi_render_test {
namespace {

/// A level of 0.25 that lasts a beat at 120 and 44100, as "a.wav".
void writeLevel(const TempFolder& folder) {
    WaveFile()
        .floats()
        .channels(2)
        .frames(22050, [](auto, int) { return 0.25; })
        .acid({.beats = 1})
        .write(folder / "a.wav");
}

TEST(MidiRender, ANoteStartsALoopAndTheNextOneEndsIt) {
    const TempFolder folder;
    writeLevel(folder);
    // On from beat 1, off at beat 2, at 120.
    WaveFile::writeBytes(folder / "a.mid",
                         midi(24, {24, 0x90, 60, 1, 6, 0x80, 60, 0, 18, 0x90, 60, 1, 6, 0x80, 60, 0}));
    const CliRun run = marnoth({"render", "--pad", "1=" + folder.name("a.wav"), "--midi",
                                folder.name("a.mid"), "--out", folder.name("out.wav")});
    ASSERT_EQ(run.status, 0) << run.err;
    const WaveFrames wave = readWaveFrames(folder / "out.wav");
    // A bar, and 20 ms for what fades.
    ASSERT_EQ(wave.samples.size() / 2, 4 * 22050u + 882);
    const auto at = [&](double beat) { return wave.samples[2 * static_cast<std::size_t>(beat * 22050)]; };
    EXPECT_EQ(at(0.5), 0.0f);
    EXPECT_NEAR(at(1.1), 0.25, 1e-3);
    EXPECT_NEAR(at(1.9), 0.25, 1e-3);
    EXPECT_EQ(at(2.2), 0.0f);
    EXPECT_EQ(at(3.5), 0.0f);
}

TEST(MidiRender, WithGatesANoteLastsAsLongAsItIsHeld) {
    const TempFolder folder;
    writeLevel(folder);
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

/// A level on pad 1 that a note on beat 1 switches on, in a bar at 120.
struct LatchedLoop {
    LatchedLoop() {
        writeLevel(folder);
        WaveFile::writeBytes(folder / "a.mid", midi(24, {24, 0x90, 60, 1, 6, 0x80, 60, 0}));
    }
    WaveFrames render(std::vector<std::string> more) const {
        std::vector<std::string> words{"render",
                                       "--pad",
                                       "1=" + folder.name("a.wav"),
                                       "--midi",
                                       folder.name("a.mid"),
                                       "--out",
                                       folder.name("out.wav")};
        words.insert(words.end(), more.begin(), more.end());
        const CliRun run = marnoth(words);
        EXPECT_EQ(run.status, 0) << run.err;
        return readWaveFrames(folder / "out.wav");
    }
    TempFolder folder;
};

TEST(MidiRender, WhatSoundsAtTheEndOfTheNotesFadesOutBehindIt) {
    const LatchedLoop it;
    const WaveFrames wave = it.render({});
    constexpr std::size_t kBar = 4 * 22050, kFade = 882;
    ASSERT_EQ(wave.samples.size() / 2, kBar + kFade);
    EXPECT_NEAR(wave.samples[2 * (kBar - 1)], 0.25, 1e-6);
    for (std::size_t i = 0; i < kFade; ++i)
        ASSERT_NEAR(wave.samples[2 * (kBar + i)], 0.25 * (1 - static_cast<double>(i) / kFade), 1e-6) << i;
}

TEST(MidiRender, ALengthThatIsAskedForIsKept) {
    const LatchedLoop it;
    const WaveFrames wave = it.render({"--beats", "3"});
    ASSERT_EQ(wave.samples.size() / 2, 3 * 22050u);
    EXPECT_NEAR(wave.samples.back(), 0.25, 1e-6);
}

TEST(MidiRender, InALoopANoteThatLastsBeyondTheEndIsHeardAtTheBeginning) {
    const LatchedLoop it;
    // From beat 3 to beat 5 of a turn of 4, in quarters of 24 pulses.
    WaveFile::writeBytes(it.folder / "a.mid", midi(24, {72, 0x90, 60, 1, 48, 0x80, 60, 0}));
    const WaveFrames wave = it.render({"--gate", "--loop", "--beats", "4"});
    ASSERT_EQ(wave.samples.size() / 2, 4 * 22050u);
    const auto at = [&](double beat) { return wave.samples[2 * static_cast<std::size_t>(beat * 22050)]; };
    for (const double beat : {0.0, 0.5, 0.9, 3.1, 3.999}) EXPECT_NEAR(at(beat), 0.25, 1e-6) << beat;
    for (const double beat : {1.0, 2.0, 2.9}) EXPECT_EQ(at(beat), 0.0f) << beat;
}

TEST(MidiRender, ALoopThatIsTooLongToBePlayedTwiceIsRefused) {
    const LatchedLoop it;
    // A note on beat 1,500,000, of 960 ticks each.
    WaveFile::writeBytes(it.folder / "a.mid", midi(1, {0xDB, 0xC6, 0x60, 0x90, 60, 1, 1, 0x80, 60, 0}));
    const CliRun run = marnoth({"render", "--pad", "1=" + it.folder.name("a.wav"), "--midi",
                                it.folder.name("a.mid"), "--loop", "--out", it.folder.name("out.wav")});
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("--loop: there are too many beats"), std::string::npos) << run.err;
}

TEST(MidiRender, InALoopNothingIsAppended) {
    const LatchedLoop it;
    EXPECT_EQ(it.render({"--loop"}).samples.size() / 2, 4 * 22050u);
}

}  // namespace
}  // namespace marnoth::test::midi_render_test
