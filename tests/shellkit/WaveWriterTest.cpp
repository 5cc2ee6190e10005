#include <gtest/gtest.h>

#include "shellkit/TempFolder.h"
#include "shellkit/WaveBytes.h"
#include "shellkit/files/Failure.h"
#include "shellkit/media/WaveFrames.h"
#include "shellkit/media/WaveWriter.h"
#include "support/WaveFile.h"

namespace marnoth::test::wave_writer_test {
namespace {

TEST(WaveWriter, WritesAFloatFileByteForByte) {
    const TempFolder folder;
    WaveWriter writer(folder / "a.wav", WaveOptions{.rate = 48000, .channels = 2});
    writer.write(std::vector<float>{0.5f, -1.0f});
    writer.write(std::vector<float>{0.25f, 2.0f});
    writer.finish();

    Bytes expected;
    append(expected, std::string("RIFF"));
    append(expected, std::uint32_t{4 + 26 + 12 + 8 + 16});
    append(expected, std::string("WAVE"));
    appendFormat(expected, 3, 2, 48000, 32, 2);
    append(expected, std::string("data"));
    append(expected, std::uint32_t{16});
    for (const float sample : {0.5f, -1.0f, 0.25f, 2.0f}) append(expected, sample);

    const std::string text = readText(folder / "a.wav");
    EXPECT_EQ(Bytes(text.begin(), text.end()), expected);
}

TEST(WaveWriter, HasItsNameOnlyWhenItIsFinished) {
    const TempFolder folder;
    {
        WaveWriter writer(folder / "a.wav", WaveOptions{.rate = 44100, .channels = 1});
        writer.write(std::vector<float>(1000));
        EXPECT_FALSE(std::filesystem::exists(folder / "a.wav"));
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder / ""));
}

TEST(WaveWriter, ReplacesAnOldFile) {
    const TempFolder folder;
    writeText(folder / "a.wav", "old");
    WaveWriter writer(folder / "a.wav", WaveOptions{.rate = 44100, .channels = 1});
    writer.write(std::vector<float>{1.0f});
    writer.finish();
    EXPECT_EQ(readWaveFrames(folder / "a.wav").samples, std::vector<float>{1.0f});
}

TEST(WaveWriter, FailsWhereThereIsNoFolder) {
    const TempFolder folder;
    const WaveOptions mono{.rate = 44100, .channels = 1};
    EXPECT_THROW(WaveWriter(folder / "none" / "a.wav", mono), FileFailure);
}

TEST(WaveFrames, ReadsWhatIsThereOfACutFile) {
    const TempFolder folder;
    WaveFile file;
    file.floats().channels(2).values(std::vector<float>{1, 2, 3, 4, 5, 6});
    file.truncate(file.bytes().size() - 6).write(folder / "cut.wav");
    EXPECT_EQ(readWaveFrames(folder / "cut.wav").samples, (std::vector<float>{1, 2, 3, 4}));
}

TEST(WaveFrames, RefusesOtherFormats) {
    const TempFolder folder;
    WaveFile().frames(4).write(folder / "integers.wav");
    WaveFile().floats().channels(3).frames(4).write(folder / "three.wav");
    WaveFile().floats().frames(4).truncate(30).write(folder / "short.wav");
    for (const char* name : {"integers.wav", "three.wav", "short.wav", "none.wav"})
        EXPECT_THROW(readWaveFrames(folder / name), FileFailure) << name;
}

}  // namespace
}  // namespace marnoth::test::wave_writer_test
