#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "cli/Studio.h"
#include "shellkit/files/Failure.h"
#include "shellkit/media/WaveFrames.h"
#include "shells/cli/RenderCommand.h"
#include "support/WaveFile.h"

namespace marnoth::test::render_test {
namespace {

float sampleAt(const WaveFrames& wave, std::size_t frame) {
    return wave.samples.at(frame * wave.channels);
}

TEST(RenderArguments, CountPadsFromOne) {
    EXPECT_EQ(readPadFile("1=a.wav").pad, 0);
    EXPECT_EQ(readPadFile("16=a=b.wav").pad, 15);
    EXPECT_EQ(readPadFile("16=a=b.wav").file, "a=b.wav");
    for (const char* text : {"0=a.wav", "17=a.wav", "a.wav", "1=", "=a.wav", "x=a.wav", "1x=a.wav", ""})
        EXPECT_THROW(readPadFile(text), WrongUse) << text;
}

TEST(RenderArguments, CountKeysFromA) {
    EXPECT_EQ(readKey("A"), 0u);
    EXPECT_EQ(readKey("Bb"), 1u);
    EXPECT_EQ(readKey("A#"), 1u);
    EXPECT_EQ(readKey("B"), 2u);
    EXPECT_EQ(readKey("C"), 3u);
    EXPECT_EQ(readKey("f#"), 9u);
    EXPECT_EQ(readKey("G"), 10u);
    EXPECT_EQ(readKey("Ab"), 11u);
    for (const char* text : {"", "H", "C##", "1", "Am"}) EXPECT_THROW(readKey(text), WrongUse) << text;
}

TEST(Render, HoldsALoopForTheBeatsThatItIsAskedFor) {
    const TempFolder folder;
    steady(0.25).write(folder / "a.wav");
    const CliRun run = marnoth(
        {"render", "--pad", "1=" + folder.name("a.wav"), "--beats", "4.5", "--out", folder.name("out.wav")});
    ASSERT_EQ(run.status, 0) << run.err;
    const WaveFrames wave = readWaveFrames(folder / "out.wav");
    EXPECT_EQ(wave.rate, 44100u);
    EXPECT_EQ(wave.channels, 2u);
    ASSERT_EQ(wave.samples.size() / 2, 9 * 44100u / 4);
    // Behind the fade of 1 ms, in the second round, and at the end, beyond which the note is held.
    for (const std::size_t frame : {45u, 60000u, 99224u})
        EXPECT_NEAR(sampleAt(wave, frame), 0.25, 1e-3) << frame;
}

TEST(Render, LastsAsLongAsItsBeatsAtTheTempo) {
    const TempFolder folder;
    steady(0.25).write(folder / "a.wav");
    const auto frames = [&](std::vector<std::string> more) {
        std::vector<std::string> words{"render", "--pad", "1=" + folder.name("a.wav"), "--out",
                                       folder.name("out.wav")};
        words.insert(words.end(), more.begin(), more.end());
        EXPECT_EQ(marnoth(words).status, 0);
        return readWaveFrames(folder / "out.wav").samples.size() / 2;
    };
    EXPECT_EQ(frames({}), 16 * 22050u);
    EXPECT_EQ(frames({"--tempo", "100", "--beats", "4"}), 4 * 26460u);
    EXPECT_EQ(frames({"--tempo", "60", "--beats", "1", "--rate", "48000"}), 48000u);
}

TEST(Render, TheBlockDoesNotChangeTheAudio) {
    const TempFolder folder;
    steady(0.25).write(folder / "a.wav");
    std::vector<std::vector<float>> audio;
    for (const char* block : {"512", "1", "1000"}) {
        marnoth({"render", "--pad", "1=" + folder.name("a.wav"), "--beats", "4", "--block", block, "--out",
                 folder.name("out.wav")});
        audio.push_back(readWaveFrames(folder / "out.wav").samples);
    }
    EXPECT_EQ(audio[0], audio[1]);
    EXPECT_EQ(audio[0], audio[2]);
}

TEST(Render, EndsOfALoopJoin) {
    const TempFolder folder;
    // Two beats at 120 of a wave that joins, 300 times.
    const auto wave = [](std::int64_t i) { return 0.25 * std::sin(i * 300 * 2 * std::numbers::pi / 44100); };
    WaveFile()
        .floats()
        .channels(2)
        .frames(44100, [=](std::int64_t i, int) { return wave(i); })
        .acid({.beats = 2})
        .write(folder / "a.wav");
    const auto render = [&](std::vector<std::string> more) {
        std::vector<std::string> words{"render", "--pad", "1=" + folder.name("a.wav"), "--beats",
                                       "4",      "--out", folder.name("out.wav")};
        words.insert(words.end(), more.begin(), more.end());
        EXPECT_EQ(marnoth(words).status, 0);
        return readWaveFrames(folder / "out.wav");
    };
    const WaveFrames loop = render({"--loop"});
    ASSERT_EQ(loop.samples.size(), 2 * 88200u);
    for (const std::size_t frame : {0u, 5u, 40u, 1000u, 50000u, 88000u, 88199u})
        EXPECT_NEAR(sampleAt(loop, frame), wave(static_cast<std::int64_t>(frame)), 1e-3) << frame;
    // Without it the wave begins under a fade of 44 frames.
    EXPECT_LT(std::abs(sampleAt(render({}), 30)), 0.8 * std::abs(wave(30)));
}

TEST(Render, WhatPlaysOnceDoesSoInEachTurnOfALoopAndRingsIntoTheNext) {
    const TempFolder folder;
    WaveFile().floats().channels(2).frames(33075, [](auto, int) { return 0.25; }).write(folder / "a.wav");
    const CliRun run = marnoth({"render", "--pad", "1=" + folder.name("a.wav"), "--beats", "1", "--loop",
                                "--out", folder.name("out.wav")});
    ASSERT_EQ(run.status, 0) << run.err;
    const WaveFrames wave = readWaveFrames(folder / "out.wav");
    ASSERT_EQ(wave.samples.size(), 2 * 22050u);
    EXPECT_NEAR(sampleAt(wave, 0), 0.25, 1e-6);
    for (const std::size_t frame : {44u, 5000u, 11000u})
        EXPECT_NEAR(sampleAt(wave, frame), 0.5, 1e-6) << frame;
    for (const std::size_t frame : {11100u, 22049u}) EXPECT_NEAR(sampleAt(wave, frame), 0.25, 1e-6) << frame;
}

TEST(Render, TellsLengthAndPeakInOneLine) {
    const TempFolder folder;
    steady(0.5).write(folder / "a.wav");
    const CliRun run = marnoth(
        {"render", "--pad", "3=" + folder.name("a.wav"), "--beats", "2", "--out", folder.name("out.wav")});
    EXPECT_NE(run.out.find("1.000 s, peak -6.0 dBFS, "), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("times real time\n"), std::string::npos);
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 1);
}

TEST(Render, StemsAddUpToTheMix) {
    const TempFolder folder;
    steady(0.25).write(folder / "a.wav");
    steady(0.125).write(folder / "b.wav");
    const CliRun run =
        marnoth({"render", "--pad", "1=" + folder.name("a.wav"), "--pad", "16=" + folder.name("b.wav"),
                 "--beats", "1", "--out", folder.name("out.wav"), "--stems", folder.name("stems")});
    ASSERT_EQ(run.status, 0) << run.err;
    const WaveFrames mix = readWaveFrames(folder / "out.wav");
    const WaveFrames first = readWaveFrames(folder / "stems" / "pad01.wav");
    const WaveFrames last = readWaveFrames(folder / "stems" / "pad16.wav");
    ASSERT_EQ(mix.samples.size(), first.samples.size());
    ASSERT_EQ(mix.samples.size(), last.samples.size());
    for (std::size_t i = 0; i < mix.samples.size(); ++i)
        ASSERT_NEAR(mix.samples[i], first.samples[i] + last.samples[i], 1e-6) << i;
    EXPECT_NEAR(sampleAt(first, 10000), 0.25, 1e-3);
    EXPECT_NEAR(sampleAt(last, 10000), 0.125, 1e-3);
}

TEST(Render, TheMixMayGoIntoTheFolderOfTheStems) {
    const TempFolder folder;
    steady(0.25).write(folder / "a.wav");
    const auto statusOf = [&](const std::string& out) {
        return marnoth({"render", "--pad", "2=" + folder.name("a.wav"), "--beats", "1", "--out",
                        folder.name(out), "--stems", folder.name("stems")})
            .status;
    };
    EXPECT_EQ(statusOf("stems/mix.wav"), 0);
    EXPECT_EQ(readWaveFrames(folder / "stems" / "mix.wav").samples.size(), 2 * 22050u);
    // There it would be in the way of a stem.
    EXPECT_EQ(statusOf("stems/../stems/pad02.wav"), 2);
    EXPECT_EQ(readWaveFrames(folder / "stems" / "pad02.wav").samples.size(), 2 * 22050u);
}

TEST(Render, SaysWhyAFileDoesNotLoad) {
    const TempFolder folder;
    writeText(folder / "text.wav", "this is no wave file at all");
    WaveFile().rate(8000).frames(8000 * 31).write(folder / "long.wav");
    steady(0.1).acid({.beats = 65}).write(folder / "beats.wav");
    WaveFile().bits(8).frames(100).write(folder / "bytes.wav");
    const std::vector<std::pair<std::string, std::string>> reasons{
        {"none.wav", "there is no such file"},
        {"text.wav", "it isn't a WAV file"},
        {"long.wav", "it is too long: 31 seconds"},
        {"beats.wav", "it has 65 beats"},
        {"bytes.wav", "8-bit WAV files aren't read; save it with 16 bits or more"},
    };
    for (const auto& [name, reason] : reasons) {
        const CliRun run =
            marnoth({"render", "--pad", "1=" + folder.name(name), "--out", folder.name("out.wav")});
        EXPECT_EQ(run.status, 1) << name;
        EXPECT_NE(run.err.find(reason), std::string::npos) << run.err;
        EXPECT_FALSE(std::filesystem::exists(folder / "out.wav")) << name;
    }
}

TEST(Render, LeavesNothingBehindAFailure) {
    const TempFolder folder;
    const TempFolder out;
    steady(0.1).write(folder / "a.wav");
    std::filesystem::create_directories(out / "mix.wav" / "in the way");
    const CliRun run = marnoth(
        {"render", "--pad", "1=" + folder.name("a.wav"), "--beats", "1", "--out", out.name("mix.wav")});
    EXPECT_EQ(run.status, 1);
    EXPECT_FALSE(std::filesystem::exists(out / "mix.wav.part"));
}

}  // namespace
}  // namespace marnoth::test::render_test
