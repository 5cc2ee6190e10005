#include <gtest/gtest.h>

#include <cmath>

#include "dsp/Stretch.h"
#include "dsp/Waves.h"

namespace marnoth::test::stretch_test {
namespace {

using test::frameNumber;
using test::noise;
using test::RenderCall;
using test::renderInBlocks;
using test::renderWhole;
using test::TestWave;

constexpr std::int32_t kRate = 44100;
constexpr int kBlockSizes[] = {1, 7, 64, 441, 512, 4096};

StretchSource grainOf(const TestWave& wave, std::int64_t first, std::int64_t length) {
    return {wave.view(), first, length, kRate, 32};
}

RenderCall stretchOf(const StretchSource& source, StereoGain gain = {1, 1}) {
    return
        [=](const StretchSpan& span, const StretchDest& dest) { renderStretched(source, span, dest, gain); };
}

/// How much of which source frames sounds at one target frame.
struct Blend {
    std::int64_t out = 0;
    double outGain = 0;
    std::int64_t in = 0;
    double inGain = 0;
};

void fade(Blend& blend, std::int64_t in, double x) {
    blend.outGain = 1 - x * x;
    blend.in = in;
    blend.inGain = 1 - (1 - x) * (1 - x);
}

/// Target frame `i` of a longer target: each pass from the last backwards is asked whether it holds the
/// frame.
Blend longerAt(std::int64_t S, std::int64_t T, std::int64_t i) {
    const std::int64_t overlap = std::min<std::int64_t>(kRate / 5, S * 5 / 10);
    const std::int64_t Q = (T - overlap) / (S - overlap);
    const std::int64_t D = ((Q + 1) * S - T) / Q;
    const std::int64_t step = S - D;
    std::int64_t X = Q < 2 ? std::min<std::int64_t>(D, kRate / 4) : std::min(step, 2 * D / 3);
    if (static_cast<float>(T) / static_cast<float>(S) < 1.04f) X = std::min<std::int64_t>(X, kRate / 40);
    std::int64_t later = 0;
    while (later < Q && i < T - (later + 1) * step) ++later;
    const std::int64_t end = T - later * step;
    Blend blend{i - (Q - later) * step, 1, 0, 0};
    if (later > 0 && i >= end - X) fade(blend, blend.out - step, static_cast<double>(i - (end - X)) / X);
    if (blend.out >= S) blend.outGain = blend.inGain = 0;
    return blend;
}

Blend shorterAt(std::int64_t S, std::int64_t T, std::int64_t i) {
    std::int64_t X = std::min<std::int64_t>(kRate / 4, static_cast<std::int64_t>(T * 0.8));
    if (static_cast<float>(S) / static_cast<float>(T) < 1.04f) X = std::min<std::int64_t>(X, kRate / 40);
    Blend blend{i, 1, 0, 0};
    if (i >= T - X) fade(blend, i + S - T, static_cast<double>(i - (T - X)) / X);
    return blend;
}

Blend blendAt(std::int64_t S, std::int64_t T, std::int64_t i) {
    if (T == S) return {i, 1, 0, 0};
    return T > S ? longerAt(S, T, i) : shorterAt(S, T, i);
}

double valueOf(const TestWave& wave, std::int64_t first, const Blend& blend, int channel) {
    return wave.at(first + blend.out, channel) * blend.outGain +
           wave.at(first + blend.in, channel) * blend.inGain;
}

/// The whole target, frame by frame from the rules.
std::vector<double> expected(const TestWave& wave, std::int64_t first, std::int64_t S, std::int64_t T,
                             int channels, StereoGain gain) {
    std::vector<double> out;
    for (std::int64_t i = 0; i < T; ++i) {
        const Blend blend = blendAt(S, T, i);
        const double left = valueOf(wave, first, blend, 0) * gain.left;
        const double right = valueOf(wave, first, blend, wave.channels - 1) * gain.right;
        if (channels == 2) {
            out.push_back(left);
            out.push_back(right);
        } else {
            out.push_back(wave.channels == 2 ? left + right : left);
        }
    }
    return out;
}

void expectAudio(const std::vector<float>& audio, const std::vector<double>& expected,
                 const std::string& what) {
    ASSERT_EQ(audio.size(), expected.size()) << what;
    for (std::size_t i = 0; i < audio.size(); ++i)
        ASSERT_NEAR(audio[i], expected[i], 2e-6) << what << " sample " << i;
}

struct Lengths {
    std::int64_t source;
    std::int64_t target;
};

constexpr Lengths kLengths[] = {
    {44100, 88200},  {44100, 44101}, {44100, 45863}, {44100, 45864}, {44100, 55125},
    {20000, 200000}, {44100, 44099}, {44100, 42000}, {44100, 22050}, {44100, 3000},
    {9, 20},         {7, 1000},      {2, 31},        {44100, 1},     {44100, 2},
    {5, 4},          {3, 7},         {1000, 1000},   {11025, 22051}, {4000, 39999},
};

std::string nameOf(const Lengths& lengths) {
    return std::to_string(lengths.source) + " to " + std::to_string(lengths.target);
}

TEST(Stretch, ATargetOfZeroIsPlainPlayback) {
    const TestWave wave(1000, 2, noise);
    const StretchSource source = grainOf(wave, 100, 500);
    std::vector<float> out(2 * 500, 0.0f);
    renderStretched(source, {0, 500, 0}, {out.data(), 2}, {1, 1});
    for (int i = 0; i < 500; ++i) ASSERT_EQ(out[2 * i], wave.at(100 + i, 0)) << i;
    std::vector<float> negative(2 * 500, 0.0f);
    renderStretched(source, {0, 500, -7}, {negative.data(), 2}, {1, 1});
    EXPECT_EQ(out, negative);
}

TEST(Stretch, AnUnchangedLengthIsTheSourceTimesTheGainBitForBit) {
    const TestWave wave(1000, 2, noise);
    const StereoGain gain{0.3f, 0.77f};
    const auto out = renderWhole(stretchOf(grainOf(wave, 0, 1000), gain), 1000, 2);
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(out[2 * i], wave.at(i, 0) * 0.3f);
        ASSERT_EQ(out[2 * i + 1], wave.at(i, 1) * 0.77f);
    }
}

TEST(Stretch, WhatLiesBehindTheGrainStaysSilent) {
    const TestWave wave(1000, 1, noise);
    std::vector<float> out(64, 0.0f);
    renderStretched(grainOf(wave, 0, 1000), {980, 64, 0}, {out.data(), 1}, {1, 1});
    for (int i = 0; i < 64; ++i) ASSERT_EQ(out[i], i < 20 ? wave.at(980 + i, 0) : 0.0f) << i;
}

TEST(Stretch, TheWalkEndsAtTheTarget) {
    const TestWave wave(1000, 1, noise);
    for (std::int64_t target : {700, 1500}) {
        std::vector<float> out(64, 0.0f);
        renderStretched(grainOf(wave, 0, 1000), {target - 10, 64, target}, {out.data(), 1}, {1, 1});
        EXPECT_NE(out[9], 0.0f);
        for (int i = 10; i < 64; ++i) ASSERT_EQ(out[i], 0.0f) << i;
    }
}

TEST(Stretch, DoubleLengthPlaysTheRunsOfTheWorkedExample) {
    const TestWave wave(44100, 1, frameNumber);
    const auto out = renderWhole(stretchOf(grainOf(wave, 0, 44100)), 88200, 1);
    const auto expectPlain = [&](std::int64_t begin, std::int64_t end, std::int64_t source) {
        for (std::int64_t i = begin; i < end; ++i)
            ASSERT_EQ(out[i], static_cast<float>(source + i - begin)) << i;
    };
    const auto expectFade = [&](std::int64_t begin, double from, double to) {
        for (std::int64_t i = 0; i < 14700; ++i) {
            const double x = static_cast<double>(i) / 14700;
            ASSERT_NEAR(out[begin + i], (from + i) * (1 - x * x) + (to + i) * (1 - (1 - x) * (1 - x)), 0.01)
                << i;
        }
    };
    expectPlain(0, 29400, 0);
    expectFade(29400, 29400, 7350);
    expectPlain(44100, 51450, 22050);
    expectFade(51450, 29400, 7350);
    expectPlain(66150, 88200, 22050);
}

TEST(Stretch, TheMiddleOfACrossfadeIsLouderByHalf) {
    const TestWave wave(44100, 1, [](std::int64_t, int) { return 1.0f; });
    const auto out = renderWhole(stretchOf(grainOf(wave, 0, 44100)), 88200, 1);
    EXPECT_NEAR(out[29400 + 7350], 1.5f, 1e-6);
    EXPECT_EQ(out[0], 1.0f);
    EXPECT_EQ(out[88199], 1.0f);
}

TEST(Stretch, EveryFrameIsTheBlendThatTheRulesGive) {
    const TestWave stereo(50000, 2, noise);
    const TestWave mono(50000, 1, noise);
    const StereoGain gain{0.8f, 0.35f};
    for (const Lengths& lengths : kLengths) {
        for (const TestWave* wave : {&stereo, &mono}) {
            for (int channels : {1, 2}) {
                const auto out = renderWhole(stretchOf(grainOf(*wave, 3000, lengths.source), gain),
                                             lengths.target, channels);
                expectAudio(out, expected(*wave, 3000, lengths.source, lengths.target, channels, gain),
                            nameOf(lengths) + ", " + std::to_string(wave->channels) + " into " +
                                std::to_string(channels));
                if (HasFatalFailure()) return;
            }
        }
    }
}

TEST(Stretch, BlocksOfAnySizeGiveTheSameAudio) {
    const TestWave wave(50000, 2, noise);
    for (const Lengths& lengths : kLengths) {
        const RenderCall render = stretchOf(grainOf(wave, 3000, lengths.source), {0.8f, 0.35f});
        const auto whole = renderWhole(render, lengths.target, 2);
        for (int block : kBlockSizes) {
            const auto pieces = renderInBlocks(render, 0, lengths.target, lengths.target, 2, block);
            for (std::int64_t i = 0; i < lengths.target * 2; ++i) {
                // Outside crossfades no gain is computed, so nothing may differ at all.
                const bool plain = blendAt(lengths.source, lengths.target, i / 2).inGain == 0;
                ASSERT_NEAR(pieces[i], whole[i], plain ? 0 : 1e-6)
                    << nameOf(lengths) << " in blocks of " << block << " sample " << i;
            }
        }
    }
}

TEST(Stretch, ABlockThatBeginsInsideACrossfadeTakesTheGainsOfThatMoment) {
    const TestWave wave(44100, 1, noise);
    const RenderCall render = stretchOf(grainOf(wave, 0, 44100));
    const auto whole = renderWhole(render, 88200, 1);
    const auto piece = renderInBlocks(render, 36000, 37000, 88200, 1, 1000);
    for (int i = 0; i < 1000; ++i) ASSERT_NEAR(piece[i], whole[36000 + i], 1e-6) << i;
}

TEST(Stretch, BlocksThatEndOnAFadesStartOrAPassesEndLoseNoFrame) {
    const TestWave wave(44100, 1, frameNumber);
    const RenderCall render = stretchOf(grainOf(wave, 0, 44100));
    const auto whole = renderWhole(render, 88200, 1);
    std::vector<float> pieces(88200, 0.0f);
    const std::int64_t cuts[] = {0, 29400, 44100, 51450, 66150, 73500, 88200};
    for (int i = 0; i < 6; ++i) {
        const auto frames = static_cast<std::int32_t>(cuts[i + 1] - cuts[i]);
        render({cuts[i], frames, 88200}, {pieces.data() + cuts[i], 1});
    }
    for (std::size_t i = 0; i < pieces.size(); ++i) ASSERT_NEAR(pieces[i], whole[i], 0.01) << i;
}

TEST(Stretch, ASingleFrameRepeats) {
    const TestWave wave(10, 1, frameNumber);
    for (std::int64_t first : {0, 4, 9}) {
        const auto out = renderWhole(stretchOf(grainOf(wave, first, 1)), 50, 1);
        for (float value : out) ASSERT_EQ(value, static_cast<float>(first));
    }
}

TEST(Stretch, ATargetOfOneFrameIsThePlainFirstFrame) {
    const TestWave wave(1000, 1, noise);
    const auto out = renderWhole(stretchOf(grainOf(wave, 10, 900)), 1, 1);
    EXPECT_EQ(out[0], wave.at(10, 0));
}

TEST(Stretch, AddsToWhatIsThere) {
    const TestWave wave(100, 1, noise);
    std::vector<float> out(10, 0.5f);
    renderStretched(grainOf(wave, 0, 100), {0, 10, 100}, {out.data(), 1}, {1, 1});
    for (int i = 0; i < 10; ++i) EXPECT_EQ(out[i], 0.5f + wave.at(i, 0));
}

TEST(Stretch, ACrossfadeThatReachesBeforeTheWaveReadsItsFirstFrame) {
    // Nine passes over three frames, in which the jump truncates: sources begin one frame before the grain.
    bool before = false;
    for (std::int64_t S : {3, 5, 7, 9}) {
        for (std::int64_t T = S + 1; T < 200; ++T) {
            const TestWave wave(S, 2, noise);
            const auto out = renderWhole(stretchOf(grainOf(wave, 0, S)), T, 2);
            expectAudio(out, expected(wave, 0, S, T, 2, {1, 1}),
                        std::to_string(S) + " to " + std::to_string(T));
            if (HasFatalFailure()) return;
            for (std::int64_t i = 0; i < T; ++i) {
                const Blend blend = blendAt(S, T, i);
                before = before || blend.out < 0 || blend.in < 0;
            }
        }
    }
    EXPECT_TRUE(before);
}

TEST(Stretch, ReadsOutsideTheWaveTakeItsEdgeFrames) {
    const TestWave wave(20, 1, [](std::int64_t frame, int) { return static_cast<float>(frame + 1); });
    const auto early = renderWhole(stretchOf(grainOf(wave, -5, 10)), 10, 1);
    EXPECT_EQ(early, (std::vector<float>{1, 1, 1, 1, 1, 1, 2, 3, 4, 5}));
    const auto late = renderWhole(stretchOf(grainOf(wave, 17, 8)), 8, 1);
    EXPECT_EQ(late, (std::vector<float>{18, 19, 20, 20, 20, 20, 20, 20}));
}

TEST(Stretch, ACrossfadeOverTheWavesEdgeKeepsItsCurve) {
    const TestWave wave(900, 2, noise);
    const Lengths cases[] = {{1000, 2000}, {1000, 600}, {1000, 1250}};
    for (const Lengths& lengths : cases) {
        for (std::int64_t first : {-400, 0, 300}) {
            const auto out = renderWhole(stretchOf(grainOf(wave, first, lengths.source)), lengths.target, 2);
            expectAudio(out, expected(wave, first, lengths.source, lengths.target, 2, {1, 1}),
                        nameOf(lengths) + " from " + std::to_string(first));
        }
    }
}

TEST(GrainGain, CentreLeavesBothSidesFull) {
    const StereoGain gain = grainGain(1, 0.5f, 1, 0.5);
    EXPECT_EQ(gain.left, 1.0f);
    EXPECT_EQ(gain.right, 1.0f);
}

TEST(GrainGain, MovingAwayLowersTheFarSideAlone) {
    const StereoGain pad = grainGain(1, 0.75f, 1, 0.5);
    EXPECT_EQ(pad.left, 0.5f);
    EXPECT_EQ(pad.right, 1.0f);
    const StereoGain grain = grainGain(1, 0.5f, 1, 0.0);
    EXPECT_EQ(grain.left, 1.0f);
    EXPECT_EQ(grain.right, 0.0f);
}

TEST(GrainGain, PansAndVolumesMultiply) {
    const StereoGain gain = grainGain(2, 0.75f, 0.25, 0.875);
    EXPECT_EQ(gain.left, 0.5f * 0.25f * 2 * 0.25f);
    EXPECT_EQ(gain.right, 0.5f);
}

TEST(GrainGain, IsRoundedTwice) {
    const float padPan = 0.7f;
    const auto a = static_cast<double>((1.0f - padPan) * 2.0f);
    const auto first = static_cast<float>((1.0 - 0.9) * 2.0 * a);
    const auto second = static_cast<float>(static_cast<double>(first) * static_cast<double>(1.3f) * 0.9);
    EXPECT_EQ(grainGain(1.3f, padPan, 0.9, 0.9).left, second);
}

}  // namespace
}  // namespace marnoth::test::stretch_test
