#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "shellkit/TempFolder.h"
#include "shellkit/files/Failure.h"
#include "shellkit/media/WaveFrames.h"
#include "shells/desktop/playing/TakeRecorder.h"
#include "shells/desktop/playing/Takes.h"
#include "support/FileSizeLimit.h"

namespace marnoth::test::take_recorder_test {
namespace {

TEST(TakeRecorder, WritesWhatItIsGivenBitForBit) {
    const TempFolder folder;
    TakeRecorder recorder;
    recorder.start(folder.name("take.wav"), 48000);
    EXPECT_TRUE(recorder.isRecording());
    std::vector<float> expected;
    for (int block = 0; block < 200; ++block) {
        std::vector<float> left(64);
        std::vector<float> right(64);
        for (int frame = 0; frame < 64; ++frame) {
            left[static_cast<std::size_t>(frame)] =
                static_cast<float>(block) + static_cast<float>(frame) / 64;
            right[static_cast<std::size_t>(frame)] = -left[static_cast<std::size_t>(frame)];
            expected.push_back(left[static_cast<std::size_t>(frame)]);
            expected.push_back(right[static_cast<std::size_t>(frame)]);
        }
        recorder.take(left, right);
    }
    EXPECT_EQ(recorder.stop(), "");
    EXPECT_FALSE(recorder.isRecording());
    const WaveFrames wave = readWaveFrames(folder / "take.wav");
    EXPECT_EQ(wave.rate, 48000u);
    EXPECT_EQ(wave.samples, expected);
}

TEST(TakeRecorder, TakesNothingBeforeAndBehind) {
    const TempFolder folder;
    TakeRecorder recorder;
    const std::vector<float> block(64, 0.5f);
    recorder.take(block, block);
    recorder.start(folder.name("take.wav"), 44100);
    EXPECT_EQ(recorder.stop(), "");
    recorder.take(block, block);
    EXPECT_TRUE(readWaveFrames(folder / "take.wav").samples.empty());
}

TEST(TakeRecorder, AFolderThatIsMissingIsToldAtOnce) {
    const TempFolder folder;
    TakeRecorder recorder;
    EXPECT_THROW(recorder.start(folder.name("no/take.wav"), 48000), FileFailure);
    EXPECT_FALSE(recorder.isRecording());
    EXPECT_EQ(recorder.stop(), "");
}

TEST(TakeRecorder, OnADiskThatFillsUpWhatThereIsIsKept) {
    const TempFolder folder;
    constexpr std::uintmax_t kRoomBytes = 600'000;
    TakeRecorder recorder;
    const std::vector<float> block(1000, 0.5f);
    {
        const FileSizeLimit limit(kRoomBytes);
        recorder.start(folder.name("take.wav"), 48000);
        for (int i = 0; i < 100; ++i) recorder.take(block, block);
        for (int tries = 0; tries < 5000 && !recorder.hasFailed(); ++tries)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        EXPECT_TRUE(recorder.hasFailed());
        const std::string told = recorder.stop();
        EXPECT_NE(told.find("take.wav"), std::string::npos) << told;
        EXPECT_TRUE(told.ends_with("the take up to there is kept")) << told;
    }
    const WaveFrames wave = readWaveFrames(folder / "take.wav");
    EXPECT_LE(std::filesystem::file_size(folder / "take.wav"), kRoomBytes);
    EXPECT_GT(wave.samples.size(), 0u);
    for (const float sample : wave.samples) ASSERT_EQ(sample, 0.5f);
    recorder.start(folder.name("again.wav"), 48000);
    EXPECT_EQ(recorder.stop(), "") << "the next one is whole";
}

/// The user's music folder while it lives.
class MusicFolderOf {
public:
    explicit MusicFolderOf(const std::string& folder) { setenv(kName, folder.c_str(), 1); }
    ~MusicFolderOf() {
        if (former_.empty())
            unsetenv(kName);
        else
            setenv(kName, former_.c_str(), 1);
    }
    MusicFolderOf(const MusicFolderOf&) = delete;
    MusicFolderOf& operator=(const MusicFolderOf&) = delete;

private:
    static constexpr const char* kName = "XDG_MUSIC_DIR";
    const std::string former_ = std::getenv(kName) ? std::getenv(kName) : "";
};

TEST(Takes, HaveTheFirstNameThatNothingHas) {
    const TempFolder folder;
    const MusicFolderOf music(folder.name(""));
    EXPECT_EQ(newTakeName(), folder.name("Marnoth/take-1.wav"));
    writeText(folder / "Marnoth/take-1.wav", "x");
    writeText(folder / "Marnoth/take-2.wav.part", "x");
    EXPECT_EQ(newTakeName(), folder.name("Marnoth/take-3.wav"));
}

TEST(Takes, AreToldByNameWhereNothingCanBeWritten) {
    const MusicFolderOf music("/proc/nowhere");
    TakeRecorder recorder;
    const std::vector<float> block(64, 0.5f);
    try {
        recorder.start(newTakeName(), 48000);
        ADD_FAILURE() << "it began";
    } catch (const FileFailure& failure) {
        EXPECT_EQ(failure.what(), std::string("/proc/nowhere/Marnoth/take-1.wav: it can't be created"));
    }
    recorder.take(block, block);
    EXPECT_FALSE(recorder.isRecording());
    EXPECT_FALSE(recorder.hasFailed());
}

TEST(Takes, AreCalledAsTheirUserWritesIt) {
    const char* const home = std::getenv("HOME");
    ASSERT_TRUE(home);
    EXPECT_EQ(shortName(std::string(home) + "/Music/take-1.wav"), "~/Music/take-1.wav");
    EXPECT_EQ(shortName("/else/where.wav"), "/else/where.wav");
}

TEST(TakeRecorder, WhoWaitsForRoomLosesNothing) {
    const TempFolder folder;
    constexpr int kBlocks = 100;
    constexpr std::size_t kFrames = 4096;
    TakeRecorder recorder;
    recorder.start(folder.name("take.wav"), 48000);
    for (int block = 0; block < kBlocks; ++block) {
        const std::vector<float> constant(kFrames, static_cast<float>(block));
        recorder.awaitRoom(kFrames);
        recorder.take(constant, constant);
    }
    EXPECT_EQ(recorder.stop(), "");
    const std::vector<float> samples = readWaveFrames(folder / "take.wav").samples;
    ASSERT_EQ(samples.size(), kBlocks * kFrames * 2);
    for (std::size_t i = 0; i < samples.size(); ++i)
        ASSERT_EQ(samples[i], static_cast<float>(i / (2 * kFrames)));
    recorder.awaitRoom(std::size_t{1} << 30);
}

TEST(TakeRecorder, MoreThanItsRoomAtOnceIsToldAsMissing) {
    const TempFolder folder;
    TakeRecorder recorder;
    recorder.start(folder.name("take.wav"), 48000);
    const std::vector<float> endless(400'000, 0.1f);
    recorder.take(endless, endless);
    EXPECT_EQ(recorder.stop(), "The disk was too slow: parts of the take are missing.");
}

}  // namespace
}  // namespace marnoth::test::take_recorder_test
