#include <gtest/gtest.h>

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

TEST(Resample, EveryValueIsWhatTheFormulaGives) {
    std::mt19937 random(40);
    for (int turn = 0; turn < 300; ++turn) {
        const int channels = 1 + turn % 3;
        const std::int64_t frames = std::uniform_int_distribution<std::int64_t>(1, 3000)(random);
        const double ratio =
            turn % 4 == 0 ? 44100.0 / 48000 : std::uniform_real_distribution(0.1, 5.0)(random);
        const std::vector<float> samples = noiseOf(static_cast<std::size_t>(frames * channels), random);
        const SourceWave source{samples.data(), frames, channels};
        const auto newFrames = static_cast<std::int64_t>(static_cast<double>(frames) * ratio + 0.5);
        std::vector<float> dest(static_cast<std::size_t>(newFrames * channels) + 2, 42.0f);
        resample(source, dest.data(), newFrames, ratio);
        for (std::int64_t i = 0; i < newFrames; ++i) {
            for (int c = 0; c < channels; ++c) {
                const float value = dest[static_cast<std::size_t>(i * channels + c)];
                ASSERT_EQ(std::bit_cast<std::uint32_t>(value),
                          std::bit_cast<std::uint32_t>(formula(source, i, c, ratio)))
                    << "frame " << i << " of " << newFrames << " from " << frames << ", channel " << c;
            }
        }
        ASSERT_EQ(dest[dest.size() - 2], 42.0f);
        ASSERT_EQ(dest.back(), 42.0f);
    }
}

}  // namespace
}  // namespace marnoth::test::resample_test
