#include <gtest/gtest.h>

#include <cmath>

#include "dsp/Tail.h"
#include "dsp/Waves.h"

namespace marnoth::test::tail_test {
namespace {

using test::noise;
using test::TestWave;

std::vector<float> tailOf(const TestWave& wave, std::int64_t first, std::int64_t grain, std::int32_t rate) {
    std::vector<float> out(static_cast<std::size_t>(2 * grain * wave.channels), 0.0f);
    renderTail(wave.view(), first, grain, rate, out.data());
    return out;
}

/// The level of pass `number` at its start, by the rule that a whole grain falls to 0.15.
double levelOf(double number, double step, double grain) {
    return std::pow(0.15, number * step / grain);
}

/// One tail frame, each pass asked for itself.
struct TailRules {
    const TestWave& wave;
    std::int64_t first;
    std::int64_t G;
    std::int32_t R;

    double at(std::int64_t i, int channel) const {
        const std::int64_t T = 2 * G;
        const std::int64_t O = std::min<std::int64_t>(R / 5, G * 5 / 10);
        const std::int64_t Q = (T - O) / (G - O);
        const std::int64_t D = ((Q + 1) * G - T) / Q;
        const std::int64_t step = G - D;
        const std::int64_t X = std::min(step, 2 * D / 3);
        std::int64_t later = 0;
        while (later < Q && i < T - (later + 1) * step) ++later;
        const std::int64_t number = Q - later;
        const std::int64_t end = T - later * step;
        const std::int64_t s = i - number * step;
        if (first + s >= wave.frames) return 0;
        const double level =
            levelOf(static_cast<double>(number), static_cast<double>(step), static_cast<double>(G));
        if (later > 0 && i >= end - X) {
            const double x = static_cast<double>(i - (end - X)) / static_cast<double>(X);
            const double next =
                levelOf(static_cast<double>(number + 1), static_cast<double>(step), static_cast<double>(G));
            return wave.at(first + s, channel) * level * (1 - x * x) +
                   wave.at(first + s - step, channel) * next * (1 - (1 - x) * (1 - x));
        }
        return wave.at(first + s, channel) * level * edge(i, T, T - Q * step - X, X > 0 ? X : step);
    }

    /// The fade-in over the first run, `firstRun` frames long, and the fade-out over the last one.
    /// The last pass, too, is cut where its crossfade would start, so the last run has the crossfade's
    /// length.
    double edge(std::int64_t i, std::int64_t T, std::int64_t firstRun, std::int64_t lastRun) const {
        const auto rise = std::min(static_cast<std::int64_t>(R * 0.002), firstRun);
        if (i < rise) return static_cast<double>(i) / static_cast<double>(rise);
        const auto fall = std::min(static_cast<std::int64_t>(R * 0.1), lastRun);
        if (i >= T - fall) return static_cast<double>(T - i) / static_cast<double>(fall);
        return 1;
    }
};

TEST(Tail, EachPassOverTheGrainFallsTo15Percent) {
    EXPECT_NEAR(std::pow(tailDecayPerFrame(44100), 44100.0), 0.15, 1e-9);
    EXPECT_DOUBLE_EQ(tailDecayPerFrame(1), 0.15);
}

TEST(Tail, ASecondRingsOutInThreePasses) {
    const TestWave ones(44100, 1, [](std::int64_t, int) { return 1.0f; });
    const auto tail = tailOf(ones, 0, 44100, 44100);
    EXPECT_EQ(tail[0], 0.0f);
    EXPECT_NEAR(tail[44], 0.5f, 1e-6);
    EXPECT_NEAR(tail[88], 1.0f, 1e-6);
    EXPECT_NEAR(tail[29399], 1.0f, 1e-6);
    // Half way through the first crossfade both passes are at three quarters.
    EXPECT_NEAR(tail[29400 + 7350], 0.75 + 0.75 * std::sqrt(0.15), 1e-5);
    EXPECT_NEAR(tail[44100], std::sqrt(0.15), 1e-5);
    EXPECT_NEAR(tail[51449], 0.3873, 1e-4);
    EXPECT_NEAR(tail[66150], 0.15f, 1e-5);
    EXPECT_NEAR(tail[88200 - 4410], 0.15f, 1e-5);
    EXPECT_NEAR(tail[88200 - 2205], 0.075f, 1e-5);
    EXPECT_NEAR(tail[88199], 0.15 / 4410, 1e-7);
}

TEST(Tail, EveryFrameIsWhatTheRulesGive) {
    for (int channels : {1, 2}) {
        const TestWave wave(30000, channels, noise);
        for (std::int64_t grain : {2, 3, 5, 10, 80, 87, 88, 89, 500, 4409, 4411, 12345, 25000}) {
            const auto tail = tailOf(wave, 4000, grain, 44100);
            const TailRules rules{wave, 4000, grain, 44100};
            for (std::int64_t i = 0; i < 2 * grain * channels; ++i) {
                ASSERT_NEAR(tail[i], rules.at(i / channels, static_cast<int>(i % channels)), 3e-6)
                    << "sample " << i << " of the tail of " << grain;
            }
        }
    }
}

TEST(Tail, AGrainAtTheWavesEndReadsNothingBehindIt) {
    // Guard frame and all behind it are NaN to the tail: it may use only what the wave has.
    for (std::int64_t grain : {1, 2, 7, 100, 5000, 20000}) {
        std::vector<float> samples(static_cast<std::size_t>(grain), 1.0f);
        samples.push_back(std::numeric_limits<float>::quiet_NaN());
        std::vector<float> tail(static_cast<std::size_t>(2 * grain), 0.0f);
        renderTail({samples.data(), grain, 1}, 0, grain, 44100, tail.data());
        for (float value : tail) ASSERT_TRUE(std::isfinite(value)) << grain;
    }
}

TEST(Tail, AGrainThatRunsPastTheWaveIsCutThere) {
    const TestWave ones(1000, 1, [](std::int64_t, int) { return 1.0f; });
    const auto tail = tailOf(ones, 600, 800, 44100);
    const TailRules rules{ones, 600, 800, 44100};
    for (std::int64_t i = 0; i < 1600; ++i) ASSERT_NEAR(tail[i], rules.at(i, 0), 3e-6) << i;
}

TEST(Tail, AGrainShorterThanTheFadeInRisesThroughItsFirstRun) {
    const TestWave ones(100, 1, [](std::int64_t, int) { return 1.0f; });
    // 20 frames: overlap 10, 4 passes with a jump and a step of 13 and 7, crossfades of 7 frames; the first
    // pass ends at frame 19 and its crossfade starts at 12.
    const auto tail = tailOf(ones, 0, 20, 44100);
    for (int i = 0; i < 12; ++i) EXPECT_NEAR(tail[i], i / 12.0, 1e-6) << i;
    EXPECT_NEAR(tail[12], 1.0, 1e-6);
}

TEST(Tail, ASingleFrameFadesFromItself) {
    const TestWave wave(10, 1, [](std::int64_t frame, int) { return static_cast<float>(frame + 1); });
    const auto tail = tailOf(wave, 5, 1, 44100);
    EXPECT_EQ(tail[0], 0.0f);
    EXPECT_NEAR(tail[1], 6 * 0.15 * 0.15, 1e-6);
}

TEST(Tail, NoGrainHasNoTail) {
    const TestWave wave(10, 1, noise);
    float untouched = 42;
    for (std::int64_t grain : {std::int64_t{0}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::min(),
                               std::numeric_limits<std::int64_t>::max()}) {
        renderTail(wave.view(), 0, grain, 44100, &untouched);
    }
    EXPECT_EQ(untouched, 42);
}

TEST(Tail, ARateWithoutRoomForFadesIsPlayedWithoutThem) {
    const TestWave ones(100, 1, [](std::int64_t, int) { return 1.0f; });
    for (std::int32_t rate : {0, 1, 9, -5}) {
        const auto tail = tailOf(ones, 0, 100, rate);
        EXPECT_NEAR(tail[0], 1.0, 1e-6) << rate;
        for (float value : tail) ASSERT_TRUE(std::isfinite(value)) << rate;
    }
}

}  // namespace
}  // namespace marnoth::test::tail_test
