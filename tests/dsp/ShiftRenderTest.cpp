#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "dsp/Stretch.h"
#include "dsp/Waves.h"

namespace marnoth::test::shift_render_test {
namespace {

using test::frameNumber;
using test::noise;
using test::RenderCall;
using test::renderInBlocks;
using test::renderWhole;
using test::TestWave;

constexpr std::int32_t kRate = 44100;

StretchSource grainOf(const TestWave& wave, std::int64_t first, std::int64_t length) {
    return {wave.view(), first, length, kRate, 32};
}

RenderCall shiftOf(const StretchSource& source, int semitones, double pitchRatio = 1,
                   StereoGain gain = {1, 1}) {
    return [=](const StretchSpan& span, const StretchDest& dest) {
        renderShifted(source, span, dest, gain, semitones, pitchRatio);
    };
}

/// The rules for one frame at a time, with no idea of runs.
struct Rules {
    const TestWave& wave;
    std::int64_t first;
    std::int64_t S;
    std::int64_t T;
    double speed;

    double ratio() const { return static_cast<double>(T) / static_cast<double>(S) * speed; }
    std::int64_t consumed() const { return static_cast<std::int64_t>(static_cast<double>(T) * speed + 0.5); }

    float read(std::int64_t v, float f, int c) const {
        return f * wave.at(first + v + 1, c) + (1.0f - f) * wave.at(first + v, c);
    }

    float blend(std::int64_t out, std::int64_t in, float x, float f, int c) const {
        return read(out, f, c) * (1.0f - x * x) + read(in, f, c) * (1.0f - (1.0f - x) * (1.0f - x));
    }

    float longer(std::int64_t v, float f, int c) const {
        const std::int64_t T2 = consumed();
        const std::int64_t O = std::min<std::int64_t>(kRate / 5, S * 5 / 10);
        const std::int64_t Q = (T2 - O) / (S - O);
        const std::int64_t D = ((Q + 1) * S - T2) / Q;
        const std::int64_t step = S - D;
        std::int64_t X = Q < 2 ? std::min<std::int64_t>(D, kRate / 4) : std::min(step, 2 * D / 3);
        if (!(static_cast<float>(T2) / static_cast<float>(S) >= 1.04f))
            X = std::min<std::int64_t>(X, kRate / 40);
        const std::int64_t k = step == 0 ? Q : std::min((T2 - v - 1) / step, Q);
        const std::int64_t b = T2 - k * step;
        const std::int64_t s = v - (Q - k) * step;
        if (v < b - X || v > b || k < 1) return read(s, f, c);
        return blend(s, s - step, static_cast<float>(v - b + X) / static_cast<float>(X), f, c);
    }

    float shorter(std::int64_t v, float f, int c) const {
        const std::int64_t T2 = consumed();
        std::int64_t X =
            std::min<std::int64_t>(kRate / 4, static_cast<std::int64_t>(static_cast<double>(T2) * 0.8));
        if (!(static_cast<float>(S) / static_cast<float>(T2) >= 1.04f))
            X = std::min<std::int64_t>(X, kRate / 40);
        const std::int64_t E = T2 - X;
        if (v <= E) return read(v, f, c);
        return blend(v, v + S - T2, static_cast<float>(v - E) / static_cast<float>(X), f, c);
    }

    float at(std::int64_t i, int c) const {
        const double u = static_cast<double>(i) * speed;
        const auto v = static_cast<std::int64_t>(u);
        const auto f = static_cast<float>(u - static_cast<double>(v));
        if (ratio() > 1.000000001) return longer(v, f, c);
        if (ratio() < 0.999999999) return shorter(v, f, c);
        return read(v, f, c);
    }
};

void expectFrame(const float* out, const Rules& rules, std::int64_t i, int channels, StereoGain gain) {
    const float left = rules.at(i, 0);
    const float right = rules.at(i, rules.wave.channels - 1);
    if (channels == 2) {
        ASSERT_EQ(out[0], left * gain.left) << "frame " << i;
        ASSERT_EQ(out[1], right * gain.right) << "frame " << i;
    } else if (rules.wave.channels == 2) {
        ASSERT_EQ(out[0], (right * gain.right + left * gain.left) * 0.5f) << "frame " << i;
    } else {
        ASSERT_EQ(out[0], left * gain.left) << "frame " << i;
    }
}

struct Case {
    std::int64_t source;
    std::int64_t target;
    int semitones;
    double pitchRatio;
};

constexpr Case kCases[] = {
    {44100, 44100, 3, 1},   {44100, 44100, -5, 1},   {44100, 55125, 3, 1},    {44100, 55125, -12, 1},
    {44100, 88200, -12, 1}, {44100, 22050, 12, 1},   {44100, 30000, -3, 1},   {44100, 200000, 7, 1},
    {44100, 44100, 1, 1},   {44100, 43000, 0, 1.02}, {44100, 44100, 12, 0.5}, {44100, 44000, 12, 0.5},
    {44100, 70000, 12, 1},  {1000, 1, -30, 1},       {1000, 3, -24, 1},       {10, 1000, 5, 1},
    {7, 301, -17, 1},       {2, 200, -40, 1},        {3, 300, 24, 1},         {44100, 300000, -31, 1},
    {1000, 50, -257, 1},    {1000, 50, 257, 1},      {1000, 50, -256, 1},     {1000, 50, 256, 1},
};

std::string nameOf(const Case& c) {
    return std::to_string(c.source) + " to " + std::to_string(c.target) + " by " +
           std::to_string(c.semitones);
}

double speedOf(int semitones, double pitchRatio) {
    return std::pow(2.0, semitones * 0.08333333333333333) * pitchRatio;
}

TEST(Shift, EveryFrameIsWhatTheRulesGiveBitForBit) {
    const TestWave stereo(50000, 2, noise);
    const TestWave mono(50000, 1, noise);
    const StereoGain gain{0.8f, 0.35f};
    for (const Case& c : kCases) {
        if (speedOf(c.semitones, c.pitchRatio) == 1) continue;
        for (const TestWave* wave : {&stereo, &mono}) {
            const Rules rules{*wave, 5000, c.source, c.target, speedOf(c.semitones, c.pitchRatio)};
            for (int channels : {1, 2}) {
                SCOPED_TRACE(nameOf(c) + ", " + std::to_string(wave->channels) + " into " +
                             std::to_string(channels));
                const auto out =
                    renderWhole(shiftOf(grainOf(*wave, 5000, c.source), c.semitones, c.pitchRatio, gain),
                                c.target, channels);
                for (std::int64_t i = 0; i < c.target; ++i) {
                    expectFrame(out.data() + i * channels, rules, i, channels, gain);
                    if (HasFatalFailure()) return;
                }
            }
        }
    }
}

TEST(Shift, BlocksOfAnySizeGiveTheSameAudioBitForBit) {
    const TestWave wave(50000, 2, noise);
    for (const Case& c : kCases) {
        const RenderCall render =
            shiftOf(grainOf(wave, 5000, c.source), c.semitones, c.pitchRatio, {0.8f, 0.35f});
        const auto whole = renderWhole(render, c.target, 2);
        for (int block : {1, 7, 64, 441, 512, 4096}) {
            EXPECT_EQ(renderInBlocks(render, 0, c.target, c.target, 2, block), whole)
                << nameOf(c) << " in blocks of " << block;
        }
    }
}

TEST(Shift, AnOctaveUpTakesEverySecondFrame) {
    const TestWave wave(1000, 1, frameNumber);
    const auto out = renderWhole(shiftOf(grainOf(wave, 0, 1000), 12), 500, 1);
    for (int i = 0; i < 500; ++i) ASSERT_EQ(out[i], static_cast<float>(2 * i)) << i;
}

TEST(Shift, AnOctaveDownInterpolatesHalfway) {
    const TestWave wave(1000, 1, frameNumber);
    const auto out = renderWhole(shiftOf(grainOf(wave, 0, 1000), -12), 2000, 1);
    // The last half frame lies between the last frame and its guard.
    for (int i = 0; i < 1999; ++i) ASSERT_EQ(out[i], 0.5f * static_cast<float>(i)) << i;
    EXPECT_EQ(out[1999], 999.0f);
}

TEST(Shift, ARatioOfOneIsPlainInterpolationWithoutCrossfade) {
    const TestWave ones(44100, 1, [](std::int64_t, int) { return 1.0f; });
    const auto target = static_cast<std::int64_t>(44100);
    // 7 semitones up and a target shorter by exactly that leave the length as it is.
    const double speed = speedOf(7, 1);
    const double pitchRatio = 1.5 / speed;
    const auto out = renderWhole(shiftOf(grainOf(ones, 0, target), 7, pitchRatio), 29400, 1);
    for (std::size_t i = 0; i < out.size(); ++i) ASSERT_EQ(out[i], 1.0f) << i;
}

TEST(Shift, AnUnchangedSpeedAndLengthIsThePlainCopy) {
    const TestWave wave(1000, 2, noise);
    const auto shifted = renderWhole(shiftOf(grainOf(wave, 0, 1000), 12, 0.5, {0.3f, 0.7f}), 1000, 2);
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(shifted[2 * i], wave.at(i, 0) * 0.3f);
        ASSERT_EQ(shifted[2 * i + 1], wave.at(i, 1) * 0.7f);
    }
}

TEST(Shift, WhatConsumesItsOwnLengthSwellsByHalfAtItsEnd) {
    // 1000 target frames at this speed are 1000.3 source frames: as many as there are, but more than none too
    // many.
    const TestWave ones(2000, 1, [](std::int64_t, int) { return 1.0f; });
    const auto out = renderWhole(shiftOf(grainOf(ones, 0, 1000), 0, 1.0003), 1000, 1);
    // The fade is all of R / 40 or of the source, whichever is less: here the whole source.
    EXPECT_EQ(out[0], 1.0f);
    EXPECT_NEAR(out[500], 1.5f, 0.001f);
    const TestWave longer(4000, 1, [](std::int64_t, int) { return 1.0f; });
    const auto late = renderWhole(shiftOf(grainOf(longer, 0, 3000), 0, 1.0001), 3000, 1);
    EXPECT_EQ(late[1897], 1.0f);
    EXPECT_NEAR(late[3000 - 551], 1.5f, 0.001f);
}

TEST(Shift, StereoIntoMonoIsHalved) {
    const TestWave wave(100, 2, [](std::int64_t, int) { return 0.5f; });
    const auto shifted = renderWhole(shiftOf(grainOf(wave, 0, 100), 12), 50, 1);
    EXPECT_EQ(shifted[10], 0.5f);
}

TEST(Shift, OtherChannelCountsAddNothing) {
    const TestWave wave(100, 3, noise);
    const auto out = renderWhole(shiftOf(grainOf(wave, 0, 100), 3), 100, 2);
    for (float value : out) ASSERT_EQ(value, 0.0f);
}

TEST(Shift, APitchRatioThatIsNoSpeedRendersNothing) {
    const TestWave wave(100, 1, noise);
    const double infinity = std::numeric_limits<double>::infinity();
    for (double ratio : {0.0, -1.0, infinity, -infinity, std::numeric_limits<double>::quiet_NaN(), 1e300}) {
        const auto out = renderWhole(shiftOf(grainOf(wave, 0, 100), 3, ratio), 100, 1);
        for (float value : out) ASSERT_EQ(value, 0.0f) << ratio;
    }
}

TEST(Shift, TheWalkEndsAtTheTarget) {
    const TestWave wave(1000, 1, noise);
    for (std::int64_t target : {500, 1000, 1700}) {
        std::vector<float> out(64, 0.0f);
        renderShifted(grainOf(wave, 0, 1000), {target - 10, 64, target}, {out.data(), 1}, {1, 1}, 3, 1);
        EXPECT_NE(out[9], 0.0f);
        for (int i = 10; i < 64; ++i) ASSERT_EQ(out[i], 0.0f) << i;
    }
}

TEST(Shift, ReadsOutsideTheWaveTakeItsEdgeFramesEachForItself) {
    const TestWave wave(900, 2, noise);
    const StereoGain gain{1, 1};
    const Case cases[] = {{1000, 2000, 3, 1}, {1000, 600, -4, 1}, {1000, 1000, 12, 0.75}, {5, 90, 3, 1}};
    for (const Case& c : cases) {
        for (std::int64_t first : {-400, 0, 300, 897}) {
            SCOPED_TRACE(nameOf(c) + " from " + std::to_string(first));
            const Rules rules{wave, first, c.source, c.target, speedOf(c.semitones, c.pitchRatio)};
            const auto out = renderWhole(
                shiftOf(grainOf(wave, first, c.source), c.semitones, c.pitchRatio, gain), c.target, 2);
            for (std::int64_t i = 0; i < c.target; ++i) {
                expectFrame(out.data() + 2 * i, rules, i, 2, gain);
                if (HasFatalFailure()) return;
            }
        }
    }
}

constexpr std::int64_t kHuge[] = {1,
                                  2,
                                  3,
                                  100,
                                  std::int64_t{1} << 31,
                                  std::int64_t{1} << 47,
                                  std::int64_t{1} << 60,
                                  std::int64_t{1} << 62,
                                  std::numeric_limits<std::int64_t>::max(),
                                  0,
                                  -1,
                                  std::numeric_limits<std::int64_t>::min()};

/// Renders 16 frames and says whether they are all finite and nothing behind them was written.
testing::AssertionResult survives(const StretchSource& source, const StretchSpan& span, int semitones,
                                  double ratio) {
    std::vector<float> out(2 * 16 + 2, 0.0f);
    out[32] = out[33] = 42;
    renderStretched(source, span, {out.data(), 2}, {1, 1});
    renderShifted(source, span, {out.data(), 2}, {1, 1}, semitones, ratio);
    for (int i = 0; i < 32; ++i) {
        if (!std::isfinite(out[i]) || std::abs(out[i]) > 8) {
            return testing::AssertionFailure()
                   << "sample " << i << " is " << out[i] << " for S " << source.length << " T "
                   << span.targetFrames << " first " << source.first << " pos " << span.pos << " semitones "
                   << semitones << " R " << source.sampleRate;
        }
    }
    if (out[32] != 42 || out[33] != 42) return testing::AssertionFailure() << "wrote behind its frames";
    return testing::AssertionSuccess();
}

TEST(Shift, HostileLengthsAndPositionsStayInsideTheWave) {
    const TestWave wave(50, 2, noise);
    const std::int64_t positions[] = {0,
                                      1,
                                      -1,
                                      99,
                                      std::int64_t{1} << 40,
                                      -(std::int64_t{1} << 50),
                                      std::numeric_limits<std::int64_t>::max(),
                                      std::numeric_limits<std::int64_t>::min()};
    for (std::int64_t length : kHuge) {
        for (std::int64_t target : kHuge) {
            for (std::int64_t pos : positions) {
                for (std::int64_t first : positions) {
                    for (std::int32_t rate : {0, -44100, 44100, std::numeric_limits<std::int32_t>::max()}) {
                        const StretchSource source{wave.view(), first, length, rate, 32};
                        ASSERT_TRUE(survives(source, {pos, 16, target}, 3, 1));
                    }
                }
                // Also where the span ends on the target.
                const std::int64_t end = target > 20 ? target - 16 : 0;
                ASSERT_TRUE(survives({wave.view(), 0, length, 44100, 32}, {end, 16, target}, -7, 1));
            }
        }
    }
}

TEST(Shift, HostileSpeedsStayInsideTheWave) {
    const TestWave wave(50, 2, noise);
    for (std::int64_t length : kHuge) {
        for (std::int64_t target : kHuge) {
            for (int semitones : {std::numeric_limits<int>::min(), -12000, -600, 0, 600, 12000,
                                  std::numeric_limits<int>::max()}) {
                for (double ratio : {1e-308, 1e-9, 0.999999999, 1.0, 1.000000001, 1e9, 1e308}) {
                    ASSERT_TRUE(
                        survives({wave.view(), 0, length, 44100, 32}, {0, 16, target}, semitones, ratio));
                }
            }
        }
    }
}

TEST(Shift, AWaveThatCannotBeReadIsLeftAlone) {
    const TestWave wave(0, 2, [](std::int64_t, int) { return 0.5f; });
    EXPECT_TRUE(survives({{nullptr, 100, 2}, 0, 100, 44100, 32}, {0, 16, 200}, 3, 1));
    EXPECT_TRUE(survives({{wave.view().samples, -1, 2}, 0, 100, 44100, 32}, {0, 16, 200}, 3, 1));
    EXPECT_TRUE(survives({{wave.view().samples, 0, 0}, 0, 100, 44100, 32}, {0, 16, 200}, 3, 1));
    EXPECT_TRUE(survives({wave.view(), 0, 100, 44100, 32}, {0, 16, 200}, 3, 1));
}

}  // namespace
}  // namespace marnoth::test::shift_render_test
