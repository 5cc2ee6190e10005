#include <gtest/gtest.h>

#include "shellkit/WaveBytes.h"
#include "shellkit/media/WaveHeader.h"

namespace marnoth::test::wave_header_test {
namespace {

constexpr WaveFormat kStereoFloat{48000, 2, SampleFormat::float32};
constexpr WaveFormat kMono24{44100, 1, SampleFormat::integer24};

Bytes asBytes(const std::vector<std::byte>& header) {
    const auto* first = reinterpret_cast<const Bytes::value_type*>(header.data());
    return Bytes(first, first + header.size());
}

TEST(WaveHeader, IntegersNeedNoMoreThanFormatAndData) {
    Bytes expected;
    append(expected, std::string("RIFF"));
    // Five frames of 3 bytes, and one that makes their number even.
    append(expected, std::uint32_t{4 + 24 + 8 + 16});
    append(expected, std::string("WAVE"));
    appendFormat(expected, 1, 1, 44100, 24);
    append(expected, std::string("data"));
    append(expected, std::uint32_t{15});
    EXPECT_EQ(asBytes(waveHeader(kMono24, WaveForm::riff, 5)), expected);
    EXPECT_EQ(wavePadding(kMono24, 5), 1);
    EXPECT_EQ(wavePadding(kMono24, 6), 0);
    EXPECT_EQ(waveFileBytes(kMono24, 5), 8 + 4 + 24 + 8 + 16);
}

TEST(WaveHeader, BeyondFourGigabytesSizesHave64Bits) {
    // An hour and a half at 192000 would do; a round number shows the arithmetic.
    constexpr std::int64_t kFrames = 5'000'000'000;
    ASSERT_EQ(waveFormFor(kStereoFloat, kFrames), WaveForm::rf64);
    Bytes expected;
    append(expected, std::string("RF64"));
    append(expected, std::uint32_t{0xFFFFFFFF});
    append(expected, std::string("WAVEds64"));
    append(expected, std::uint32_t{28});
    // "WAVE", then the chunks "ds64", "fmt " and "fact", and the header of "data".
    append(expected, std::uint64_t{4 + 36 + 26 + 12 + 8 + 40'000'000'000});
    append(expected, std::uint64_t{40'000'000'000});
    append(expected, std::uint64_t{5'000'000'000});
    append(expected, std::uint32_t{0});
    appendFormat(expected, 3, 2, 48000, 32, 0xFFFFFFFF);
    append(expected, std::string("data"));
    append(expected, std::uint32_t{0xFFFFFFFF});
    EXPECT_EQ(asBytes(waveHeader(kStereoFloat, WaveForm::rf64, kFrames)), expected);
    EXPECT_EQ(waveFileBytes(kStereoFloat, kFrames), 8 + 4 + 36 + 26 + 12 + 8 + 40'000'000'000);
}

TEST(WaveHeader, TheOlderFormServesAsLongAsItsSizesDo) {
    // 2^32 - 1 bytes less a kilobyte for whatever else is in the file, in frames of 8.
    constexpr std::int64_t kMost = (0xFFFFFFFFLL - 1024) / 8;
    EXPECT_EQ(waveFormFor(kStereoFloat, kMost), WaveForm::riff);
    EXPECT_EQ(waveFormFor(kStereoFloat, kMost + 1), WaveForm::rf64);
    EXPECT_LE(waveFileBytes(kStereoFloat, kMost), 0xFFFFFFFFLL);
}

TEST(WaveHeader, IsAsLongForAnyNumberOfFrames) {
    for (const WaveForm form : {WaveForm::riff, WaveForm::rf64})
        EXPECT_EQ(waveHeader(kMono24, form, 0).size(), waveHeader(kMono24, form, 1'000'000'001).size());
}

}  // namespace
}  // namespace marnoth::test::wave_header_test
