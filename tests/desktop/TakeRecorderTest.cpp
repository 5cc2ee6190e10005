#include <gtest/gtest.h>

#include "shellkit/TempFolder.h"
#include "shellkit/files/Failure.h"
#include "shellkit/media/WaveFrames.h"
#include "shells/desktop/TakeRecorder.h"

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
