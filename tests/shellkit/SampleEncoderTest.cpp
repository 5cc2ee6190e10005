#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <map>

#include "shellkit/media/SampleEncoder.h"

namespace marnoth::test::sample_encoder_test {
namespace {

using Samples = std::vector<float>;

/// The little-endian integers of a file's bytes.
std::vector<std::int32_t> integers(std::span<const std::byte> bytes, std::size_t width) {
    std::vector<std::int32_t> values;
    for (std::size_t at = 0; at < bytes.size(); at += width) {
        std::int32_t value = 0;
        for (std::size_t i = 0; i < width; ++i)
            value += std::to_integer<std::int32_t>(bytes[at + i]) << 8 * i;
        const std::int32_t whole = 1 << 8 * width;
        values.push_back(value >= whole / 2 ? value - whole : value);
    }
    return values;
}

std::vector<std::int32_t> encoded(const Encoding& encoding, const Samples& samples) {
    SampleEncoder encoder(encoding, 1);
    return integers(encoder.encode(samples), bytesOf(encoding.format));
}

constexpr Encoding kPlain16{.format = SampleFormat::integer16, .dither = false};
constexpr Encoding kPlain24{.format = SampleFormat::integer24, .dither = false};

TEST(SampleEncoder, IntegersAreTheNearestStep) {
    // 32768 and 8388608 steps to full scale; halves go up.
    EXPECT_EQ(encoded(kPlain16, {0.0f, 0.5f, -0.5f, -1.0f, 0.49f / 32768, 0.5f / 32768, -0.51f / 32768}),
              (std::vector<std::int32_t>{0, 16384, -16384, -32768, 0, 1, -1}));
    EXPECT_EQ(encoded(kPlain24, {0.5f, -1.0f, 3.0f / 8388608}),
              (std::vector<std::int32_t>{4194304, -8388608, 3}));
}

TEST(SampleEncoder, IntegersStopAtFullScaleAndTheClippedAreCounted) {
    SampleEncoder encoder(kPlain16, 2);
    const Samples samples{0.5f, 1.0f, 0.0f, -1.0f, 1.5f, 0.0f, 0.0f, -2.0f};
    EXPECT_EQ(integers(encoder.encode(samples), 2),
              (std::vector<std::int32_t>{16384, 32767, 0, -32768, 32767, 0, 0, -32768}));
    EXPECT_EQ(encoder.clipping().samples, 2);
    EXPECT_EQ(encoder.clipping().firstFrame, 2);
    EXPECT_EQ(encoder.clipping().peak, 2.0f);
}

TEST(SampleEncoder, TheFrameOfTheFirstClippedSampleCountsFromTheBeginning) {
    SampleEncoder encoder(kPlain16, 2);
    encoder.encode(Samples(200));
    encoder.encode(Samples{0, 0, 0, 1.25f});
    EXPECT_EQ(encoder.clipping().firstFrame, 101);
}

TEST(SampleEncoder, WhatIsNoNumberIsSilentAndWhatIsInfiniteClips) {
    const float infinite = std::numeric_limits<float>::infinity();
    EXPECT_EQ(encoded(kPlain16, {std::nanf(""), infinite, -infinite}),
              (std::vector<std::int32_t>{0, 32767, -32768}));
}

TEST(SampleEncoder, FloatsKeepTheirBitsAndAreNeverClipped) {
    const Samples samples{0.1f, -3.0f, std::nanf("7"), 1e-40f};
    SampleEncoder encoder({}, 1);
    const auto bytes = encoder.encode(samples);
    const auto before = std::as_bytes(std::span(samples));
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), before.begin(), before.end()));
    EXPECT_EQ(encoder.clipping().samples, 0);
}

TEST(SampleEncoder, AGainComesBeforeEverythingElse) {
    EXPECT_EQ(encoded({.format = SampleFormat::integer16, .dither = false, .gain = 2}, {0.25f, 0.75f}),
              (std::vector<std::int32_t>{16384, 32767}));
    SampleEncoder encoder({.gain = 0.5}, 1);
    float value = 0;
    std::memcpy(&value, encoder.encode(Samples{3.0f}).data(), sizeof value);
    EXPECT_EQ(value, 1.5f);
}

TEST(SampleEncoder, DitherIsTriangularNoiseOfTwoSteps) {
    // Rounded, the noise on silence is -1, 0 or 1 step: beyond half a step lies an eighth on each side.
    constexpr int kCount = 100000;
    std::map<std::int32_t, int> count;
    for (const std::int32_t value : encoded({.format = SampleFormat::integer16}, Samples(kCount)))
        ++count[value];
    EXPECT_EQ(count.size(), 3u);
    for (const auto& [value, share] : std::map<std::int32_t, double>{{-1, 0.125}, {0, 0.75}, {1, 0.125}})
        EXPECT_NEAR(count[value] / double{kCount}, share, 0.005) << value;
}

/// The correlation of two rows of values with mean 0.
double correlation(const std::vector<std::int32_t>& a, const std::vector<std::int32_t>& b) {
    double ab = 0;
    double aa = 0;
    double bb = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        ab += a[i] * b[i];
        aa += a[i] * a[i];
        bb += b[i] * b[i];
    }
    return ab / std::sqrt(aa * bb);
}

TEST(SampleEncoder, TheNoiseOfOneFileIsNotThatOfAnother) {
    // Of so many values that have nothing in common the correlation is within a hundredth.
    const Samples silence(100'000);
    const Encoding first{.format = SampleFormat::integer16};
    Encoding other = first;
    for (const std::uint32_t sequence : {1u, 2u, 16u}) {
        other.ditherSequence = sequence;
        EXPECT_NEAR(correlation(encoded(first, silence), encoded(other, silence)), 0, 0.02) << sequence;
    }
    EXPECT_EQ(correlation(encoded(first, silence), encoded(first, silence)), 1);
}

TEST(SampleEncoder, DitheredLevelsBelowAStepSurviveOnAverage) {
    constexpr int kCount = 200000;
    double sum = 0;
    for (const std::int32_t value :
         encoded({.format = SampleFormat::integer24}, Samples(kCount, 0.3f / 8388608)))
        sum += value;
    // The mean of so many values of half a step's spread is within a hundredth.
    EXPECT_NEAR(sum / kCount, 0.3, 0.01);
}

TEST(SampleEncoder, TheSameAudioGivesTheSameBytesHoweverItIsCut) {
    Samples samples;
    for (int i = 0; i < 1000; ++i) samples.push_back(static_cast<float>(std::sin(0.1 * i)));
    const Encoding dithered{.format = SampleFormat::integer16};
    SampleEncoder inPieces(dithered, 1);
    std::vector<std::int32_t> pieces;
    for (std::size_t at = 0; at < samples.size(); at += 10)
        for (const std::int32_t value : integers(inPieces.encode(std::span(samples).subspan(at, 10)), 2))
            pieces.push_back(value);
    EXPECT_EQ(encoded(dithered, samples), pieces);
}

TEST(SampleEncoder, TheHighestLevelIsNeverClippedWhateverTheDither) {
    for (const bool dither : {false, true}) {
        const Encoding encoding{.format = SampleFormat::integer16, .dither = dither};
        const auto level = static_cast<float>(highestLevel(encoding));
        const std::int32_t highest = dither ? 32766 : 32767;
        for (const std::int32_t value : encoded(encoding, Samples(1000, level)))
            EXPECT_NEAR(value, highest, dither ? 1 : 0);
    }
    EXPECT_EQ(highestLevel({}), 1.0);
}

}  // namespace
}  // namespace marnoth::test::sample_encoder_test
