#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <random>
#include <vector>

#include "dsp/Crossfade.h"
#include "dsp/MixRun.h"
#include "dsp/Waves.h"

/// Both sides of a crossfade at once beside the two ramped kernels in turn, bit for bit.
namespace marnoth::test::crossfade_test {
namespace {

struct Crossfade {
    std::int64_t from = 0;
    std::int64_t to = 0;
    std::int64_t count = 0;
    std::int32_t destChannels = 2;
    MixArgs out;
    MixArgs in;
};

class Crossfades {
public:
    explicit Crossfades(unsigned seed) : random(seed) {}

    std::int64_t between(std::int64_t least, std::int64_t most) {
        return std::uniform_int_distribution<std::int64_t>(least, most)(random);
    }

    /// Most inside a wave of so many frames, some over an end, some up to the guard frame.
    Crossfade over(std::int64_t frames) {
        Crossfade fade;
        fade.count = between(0, 200);
        fade.from = placeOf(fade.count, frames);
        fade.to = placeOf(fade.count, frames);
        fade.destChannels = between(0, 3) == 0 ? 1 : 2;
        fade.out = ramp();
        fade.in = ramp();
        return fade;
    }

private:
    std::int64_t placeOf(std::int64_t count, std::int64_t frames) {
        if (between(0, 5) == 0) return frames + 1 - count + between(-1, 1);
        return between(-3, frames);
    }

    MixArgs ramp() {
        std::uniform_real_distribution<double> real(-1, 1);
        MixArgs args;
        args.gainL = real(random);
        args.gainR = real(random);
        args.stepL = real(random) * 0.01;
        args.stepR = real(random) * 0.01;
        args.curveL = real(random) * 0.0001;
        args.curveR = real(random) * 0.0001;
        return args;
    }

    std::mt19937 random;
};

std::vector<float> destinationOf(const Crossfade& fade) {
    std::vector<float> dest(static_cast<std::size_t>(fade.count * fade.destChannels) + 4);
    for (std::size_t i = 0; i < dest.size(); ++i) dest[i] = noise(static_cast<std::int64_t>(i), 1);
    return dest;
}

std::vector<float> inTurn(const SourceWave& wave, Crossfade fade) {
    std::vector<float> dest = destinationOf(fade);
    fade.out.dest = fade.in.dest = dest.data();
    const MixKernel kernel = GetMixKernel(32, static_cast<std::uint32_t>(wave.channels),
                                          static_cast<std::uint32_t>(fade.destChannels), 0, 1, 0);
    mixRun(kernel, wave, fade.from, fade.count, fade.destChannels, fade.out);
    mixRun(kernel, wave, fade.to, fade.count, fade.destChannels, fade.in);
    return dest;
}

FadeState stateOf(const Crossfade& fade) {
    const MixArgs& out = fade.out;
    const MixArgs& in = fade.in;
    return {{out.gainL, out.gainR, in.gainL, in.gainR},
            {out.stepL, out.stepR, in.stepL, in.stepR},
            {out.curveL, out.curveR, in.curveL, in.curveR}};
}

std::vector<float> together(const SourceWave& wave, Crossfade fade, CrossfadeGains* known = nullptr) {
    std::vector<float> dest = destinationOf(fade);
    mixCrossfade({wave, fade.from, fade.to, fade.count, dest.data(), fade.destChannels}, stateOf(fade),
                 known);
    return dest;
}

std::vector<std::uint32_t> bitsOf(const std::vector<float>& values) {
    std::vector<std::uint32_t> bits;
    for (float value : values) bits.push_back(std::bit_cast<std::uint32_t>(value));
    return bits;
}

TEST(Crossfade, BothSidesAtOnceGiveTheBitsOfTwoRampedKernelsInTurn) {
    const TestWave waves[] = {{1000, 1, noise}, {1000, 2, noise}, {1000, 3, noise}, {40, 2, noise}};
    Crossfades fades(30);
    for (int i = 0; i < 5000; ++i) {
        const TestWave& wave = waves[i % 4];
        const Crossfade fade = fades.over(wave.frames);
        ASSERT_EQ(bitsOf(together(wave.view(), fade)), bitsOf(inTurn(wave.view(), fade)))
            << "crossfade " << i << ": " << fade.count << " frames from " << fade.from << " and " << fade.to
            << ", " << wave.channels << " channels into " << fade.destChannels;
    }
}

TEST(Crossfade, RememberedGainsGiveTheBitsOfThoseWorkedOutAnew) {
    const TestWave waves[] = {{4000, 1, noise}, {4000, 2, noise}};
    Crossfades fades(31);
    CrossfadeGains known;
    // More ramps than are remembered, most of them met again, at other places of the wave and in other
    // lengths.
    std::vector<Crossfade> ramps;
    for (int i = 0; i < 6; ++i) ramps.push_back(fades.over(1000));
    for (int i = 0; i < 3000; ++i) {
        const TestWave& wave = waves[i % 2];
        Crossfade fade = ramps[static_cast<std::size_t>(fades.between(0, i % 3 == 0 ? 5 : 2))];
        fade.destChannels = 2;
        fade.count = std::array{64, 64, 63, 1, 512, 513, 1300}[static_cast<std::size_t>(fades.between(0, 6))];
        fade.from = fades.between(0, wave.frames - fade.count);
        fade.to = fades.between(0, wave.frames - fade.count);
        ASSERT_EQ(bitsOf(together(wave.view(), fade, &known)), bitsOf(inTurn(wave.view(), fade)))
            << "crossfade " << i << ": " << fade.count << " frames of " << wave.channels << " channels";
    }
}

TEST(Crossfade, GainsThatDifferInTheSignOfAZeroAloneAreToldApart) {
    CrossfadeGains known;
    FadeState state;
    CrossfadeGains::Ramp& ramp = known.replaceOldest();
    ramp.begin = state;
    ramp.frames = 10;
    EXPECT_EQ(known.find(state, 10), &ramp);
    EXPECT_EQ(known.find(state, 11), nullptr);
    state.step[2] = -0.0;
    EXPECT_EQ(known.find(state, 10), nullptr);
}

TEST(Crossfade, GainsRunOnFromFrameToFrame) {
    const TestWave ones(100, 2, [](std::int64_t, int) { return 1.0f; });
    Crossfade fade;
    fade.from = 10;
    fade.to = 50;
    fade.count = 5;
    fade.out.gainL = 8;
    fade.out.stepL = -1;
    fade.out.gainR = 4;
    fade.in.stepL = 16;
    fade.in.stepR = 2;
    fade.in.curveR = 2;
    std::vector<float> dest(12, 0.0f);
    mixCrossfade({ones.view(), fade.from, fade.to, fade.count, dest.data(), 2}, stateOf(fade));
    EXPECT_EQ(dest,
              (std::vector<float>{8, 4, 7 + 16, 4 + 2, 6 + 32, 4 + 6, 5 + 48, 4 + 12, 4 + 64, 4 + 20, 0, 0}));
}

}  // namespace
}  // namespace marnoth::test::crossfade_test
