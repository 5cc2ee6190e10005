#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <random>
#include <vector>

#include "sample/Resample.h"

/// The change of rate beside its formula, bit for bit, for waves and rates made at random.
namespace marnoth::test::resample_test {
namespace {

std::vector<float> noiseOf(std::size_t values, std::mt19937& random) {
    std::uniform_real_distribution<float> level(-1, 1);
    std::vector<float> noise(values);
    for (float& value : noise) value = level(random);
    return noise;
}

/// Four points around i / ratio, weighed by a quadratic; silence around the wave.
float formula(const SourceWave& source, std::int64_t i, int channel, double ratio) {
    const double r = 1.41421356237309504880;
    const double t = static_cast<double>(i) / ratio;
    const auto n = static_cast<std::int64_t>(t);
    const double f = t - static_cast<double>(n);
    const auto x = [&](std::int64_t k) {
        const std::int64_t frame = n + k - 2;
        const bool inside = frame >= 0 && frame < source.frames;
        return inside ? static_cast<double>(source.samples[frame * source.channels + channel]) : 0.0;
    };
    const double outer = r * f * f - f * f - r * f + f;
    const double left = r / 2 - r * f * f + f * f;
    const double right = 1 - r / 2 + (2 * r - 2) * f + (1 - r) * f * f;
    return static_cast<float>((x(0) + x(3)) * outer + x(1) * left + x(2) * right);
}

/// A wave made at random, and how long it is at another rate.
struct Case {
    Case(int turn, std::mt19937& random)
        : channels(1 + turn % 3),
          frames(std::uniform_int_distribution<std::int64_t>(1, turn % 2 ? 40 : 3000)(random)),
          ratio(turn % 4 == 0 ? 44100.0 / 48000 : std::uniform_real_distribution(0.1, 5.0)(random)),
          samples(noiseOf(static_cast<std::size_t>(frames * channels), random)),
          newFrames(static_cast<std::int64_t>(static_cast<double>(frames) * ratio + 0.5)),
          dest(static_cast<std::size_t>(newFrames * channels) + 2, 42.0f) {}

    SourceWave source() const { return {samples.data(), frames, channels}; }

    void expectFormula() const {
        for (std::int64_t i = 0; i < newFrames; ++i) {
            for (int c = 0; c < channels; ++c) {
                const float value = dest[static_cast<std::size_t>(i * channels + c)];
                ASSERT_EQ(std::bit_cast<std::uint32_t>(value),
                          std::bit_cast<std::uint32_t>(formula(source(), i, c, ratio)))
                    << "frame " << i << " of " << newFrames << " from " << frames << ", channel " << c;
            }
        }
        ASSERT_EQ(dest[dest.size() - 2], 42.0f);
        ASSERT_EQ(dest.back(), 42.0f);
    }

    int channels;
    std::int64_t frames;
    double ratio;
    std::vector<float> samples;
    std::int64_t newFrames;
    std::vector<float> dest;
};

TEST(Resample, EveryValueIsWhatTheFormulaGives) {
    std::mt19937 random(40);
    for (int turn = 0; turn < 300; ++turn) {
        Case wave(turn, random);
        resample(wave.source(), wave.dest.data(), wave.newFrames, wave.ratio);
        ASSERT_NO_FATAL_FAILURE(wave.expectFormula());
    }
}

TEST(RateChange, WavesThatComeInBlocksOfAnyLengthAreWhatTheFormulaGives) {
    std::mt19937 random(41);
    for (int turn = 0; turn < 600; ++turn) {
        Case wave(turn, random);
        const std::int64_t most = turn % 5 == 0 ? 2 : 700;
        RateChange change(wave.dest.data(), wave.newFrames, wave.ratio, wave.channels, most);
        for (std::int64_t at = 0, count = 0; at < wave.frames; at += count) {
            count = std::min(wave.frames - at, std::uniform_int_distribution<std::int64_t>(0, most)(random));
            std::copy_n(wave.samples.data() + at * wave.channels, count * wave.channels, change.block());
            change.take(count);
        }
        change.finish();
        ASSERT_NO_FATAL_FAILURE(wave.expectFormula());
    }
}

TEST(RateChange, NewFramesAreThereAsSoonAsTheirPointsAre) {
    std::vector<float> dest(10, 42.0f);
    RateChange change(dest.data(), 10, 2.0, 1, 8);
    std::fill_n(change.block(), 4, 1.0f);
    change.take(4);
    // Frame 5 lies at 2.5 of the source and reaches to its frame 3, frame 6 lies at 3.
    EXPECT_NE(dest[5], 42.0f);
    EXPECT_EQ(dest[6], 42.0f);
    change.finish();
    EXPECT_NE(dest[9], 42.0f);
}

}  // namespace
}  // namespace marnoth::test::resample_test
