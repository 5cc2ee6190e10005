#include <gtest/gtest.h>

#include <numeric>

#include "sample/OpenedWave.h"

namespace marnoth::test::acid_wave_read_test {
namespace {

/// 0, 1, 2 and so on, one byte a value.
Bytes ramp(int count) {
    Bytes bytes(static_cast<std::size_t>(count));
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
    return bytes;
}

TEST(AcidWaveRead, AudioComesInPiecesUpToItsEnd) {
    const OpenedWave wave(WaveFile().audio(ramp(10)).info("INAM", "behind"));
    ASSERT_EQ(wave->SeekFrame(0), S_OK);
    Bytes got(10);
    EXPECT_EQ(wave->ReadData(got.data(), 4), 4u);
    EXPECT_EQ(wave->readPosition, 4u);
    EXPECT_EQ(wave->ReadData(got.data() + 4, 100), 6u);
    EXPECT_EQ(got, ramp(10));
    EXPECT_EQ(wave->readPosition, 10u);
    EXPECT_EQ(wave->ReadData(got.data(), 1), 0u);
    EXPECT_EQ(wave->lastError, 0u);
}

TEST(AcidWaveRead, SeekingCountsFrames) {
    const OpenedWave wave(WaveFile().channels(2).audio(ramp(40)));
    ASSERT_EQ(wave->SeekFrame(3), S_OK);
    EXPECT_EQ(wave->readPosition, 12u);
    std::uint8_t first = 0;
    EXPECT_EQ(wave->ReadData(&first, 1), 1u);
    EXPECT_EQ(first, 12);
}

TEST(AcidWaveRead, SeekingGrantsTheSizeOfTheWholeChunk) {
    const OpenedWave wave(WaveFile().audio(ramp(10)).info("INAM", "behind the audio"));
    ASSERT_EQ(wave->SeekFrame(4), S_OK);
    Bytes got(16);
    EXPECT_EQ(wave->ReadData(got.data(), 16), 10u);
    EXPECT_EQ(got[1], 9);
    EXPECT_EQ(got[2], 'L');
}

TEST(AcidWaveRead, FirstOfTwoAudioChunksIsReadAndTheOneBehindTheFormatMeasured) {
    const OpenedWave wave(WaveFile()
                              .audio(ramp(20))
                              .addChunk("data", Bytes{})
                              .addChunk("JUNK", ramp(6))
                              .moveBefore("JUNK", "fmt "));
    EXPECT_EQ(wave->GetLength(3), 10);

    Bytes bytes =
        WaveFile().audio(ramp(20)).addChunk("JUNK", {90, 91, 92, 93}).moveBefore("JUNK", "fmt ").bytes();
    std::copy_n("data", 4, bytes.begin() + 12);
    const OpenedWave two(bytes);
    EXPECT_EQ(two->GetLength(3), 10);
    ASSERT_EQ(two->SeekFrame(0), S_OK);
    Bytes got(20);
    EXPECT_EQ(two->ReadData(got.data(), 20), 4u);
    EXPECT_EQ(got[0], 90);
}

TEST(AcidWaveRead, AudioThatTheFileCutsShortGivesWhatIsThereAndReportsNothingCopied) {
    const WaveFile file = WaveFile().audio(ramp(10));
    const OpenedWave wave(WaveFile(file).truncate(file.bytes().size() - 3));
    EXPECT_EQ(wave.result, S_OK);
    EXPECT_EQ(wave->GetLength(3), 5);
    ASSERT_EQ(wave->SeekFrame(0), S_OK);
    Bytes got(10, 0xEE);
    EXPECT_EQ(wave->ReadData(got.data(), 10), 0u);
    EXPECT_EQ(wave->lastError, 261u);
    EXPECT_EQ(got, (Bytes{0, 1, 2, 3, 4, 5, 6, 0xEE, 0xEE, 0xEE}));
}

TEST(AcidWaveRead, NothingComesFromAFileThatIsNotOpen) {
    CAcidWave wave;
    char byte = 0;
    EXPECT_EQ(wave.SeekFrame(0), E_FAIL);
    EXPECT_EQ(wave.lastError, 263u);
    EXPECT_EQ(wave.ReadData(&byte, 1), 0u);
}

TEST(AcidWaveRead, SeekingFarBehindTheEndGivesNothing) {
    const OpenedWave wave(WaveFile().channels(2).audio(ramp(40)));
    EXPECT_EQ(wave->SeekFrame(0xFFFFFFFF), S_OK);
    char byte = 0;
    EXPECT_EQ(wave->ReadData(&byte, 1), 0u);
    EXPECT_EQ(wave->lastError, 261u);
}

}  // namespace
}  // namespace marnoth::test::acid_wave_read_test
