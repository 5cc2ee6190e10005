#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include "shellkit/TempFolder.h"
#include "shellkit/media/WaveFrames.h"
#include "shells/desktop/audio/FileAudioSystem.h"
#include "support/FileSizeLimit.h"

namespace marnoth::test::file_driver_test {
namespace {

constexpr std::uint32_t kRate = 192000;
constexpr std::int32_t kFrames = 64;

/// Counts on the left, down on the right.
struct Counter final : AudioClient {
    bool prepare(std::uint32_t /*rate*/, std::int32_t /*mostFrames*/) override { return isReady; }
    void midi(std::int32_t /*frame*/, std::uint8_t /*status*/, std::uint8_t /*data1*/,
              std::uint8_t /*data2*/) override {}
    void render(std::int32_t frames, OutputPointers outputs) override {
        for (std::int32_t frame = 0; frame < frames; ++frame, ++count) {
            outputs[0][frame] = static_cast<float>(count);
            outputs[1][frame] = -static_cast<float>(count);
        }
    }
    void dropout() override {}
    void waitFor(int frames) const {
        while (count < frames) std::this_thread::yield();
    }

    bool isReady = true;
    std::atomic<int> count = 0;
};

AudioWish into(const std::string& file) {
    return {.device = file, .midiPort = {}, .rate = kRate, .frames = kFrames};
}

TEST(FileDriver, TheFileHoldsAllThatWasPlayed) {
    const TempFolder folder;
    Counter counter;
    FileAudioSystem system;
    auto driver = system.open(into(folder.name("take.wav")), counter);
    EXPECT_EQ(driver->name(), folder.name("take.wav"));
    EXPECT_EQ(driver->rate(), kRate);
    EXPECT_EQ(driver->frames(), kFrames);
    counter.waitFor(640);
    driver->look();
    EXPECT_EQ(driver->trouble(), "");
    driver.reset();
    const WaveFrames wave = readWaveFrames(folder / "take.wav");
    EXPECT_EQ(wave.rate, kRate);
    ASSERT_EQ(wave.samples.size(), static_cast<std::size_t>(2 * counter.count));
    for (std::size_t frame = 0; frame < wave.samples.size() / 2; ++frame) {
        ASSERT_EQ(wave.samples[2 * frame], static_cast<float>(frame));
        ASSERT_EQ(wave.samples[2 * frame + 1], -static_cast<float>(frame));
    }
}

TEST(FileDriver, AFolderThatIsMissingIsToldAtOnce) {
    const TempFolder folder;
    Counter counter;
    EXPECT_THROW(FileAudioSystem().open(into(folder.name("no/take.wav")), counter), std::runtime_error);
    EXPECT_EQ(counter.count, 0);
}

TEST(FileDriver, AClientThatCantPlayLeavesNoFile) {
    const TempFolder folder;
    Counter counter;
    counter.isReady = false;
    EXPECT_THROW(FileAudioSystem().open(into(folder.name("take.wav")), counter), std::runtime_error);
    EXPECT_TRUE(std::filesystem::is_empty(folder / "."));
}

TEST(FileDriver, ATakeIsntOverwrittenByTheNextOne) {
    const TempFolder folder;
    Counter counter;
    FileAudioSystem system;
    system.open(into(folder.name("take.wav")), counter);
    EXPECT_THROW(system.open(into(folder.name("take.wav")), counter), std::runtime_error);
    EXPECT_TRUE(std::filesystem::exists(folder / "take.wav"));
}

TEST(FileDriver, AFileNeedsAName) {
    Counter counter;
    FileAudioSystem system;
    EXPECT_TRUE(system.needsDevice());
    EXPECT_THROW(system.open({}, counter), std::runtime_error);
}

TEST(FileDriver, AFullDiskIsToldWhileItPlaysAndWhatItHoldsStays) {
    const TempFolder folder;
    Counter counter;
    FileAudioSystem system;
    auto driver = system.open(into(folder.name("take.wav")), counter);
    const auto written = [&] { return std::filesystem::file_size(folder / "take.wav.part"); };
    while (written() < 5000) std::this_thread::yield();
    const FileSizeLimit limit(written());
    while (driver->trouble().empty()) {
        std::this_thread::yield();
        driver->look();
    }
    EXPECT_NE(driver->trouble().find("take.wav"), std::string::npos) << driver->trouble();
    EXPECT_NE(driver->trouble().find("the take up to there is kept"), std::string::npos);
    driver.reset();
    const WaveFrames wave = readWaveFrames(folder / "take.wav");
    ASSERT_GT(wave.samples.size(), 1000u);
    EXPECT_EQ(wave.samples[1000], 500.0f);
}

}  // namespace
}  // namespace marnoth::test::file_driver_test
