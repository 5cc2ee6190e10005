#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "hostkit/PlayingRig.h"

namespace marnoth::test::whole_path_test {
namespace {

/// What a pad of constant `value` puts out, `frame` frames into its voice.
float faded(double value, std::int64_t frame) {
    return static_cast<float>(value * static_cast<double>(std::min(frame, kFadeIn)) / kFadeIn);
}

TEST(WholePath, ANoteSoundsAtItsFrameAcrossATempoChange) {
    PlayingRig it;
    it.rig.detach();
    ASSERT_EQ(it.rig.attach({.tempo = 100.0, .key = {}}), S_OK);
    ASSERT_TRUE(it.rig.addTempo(1440, 150.0));
    it.loadConstant(0, 4410, 0.5);
    it.start();
    it.note(0, 2400);  // 0.9 s at 100 and 0.4 s at 150 beats per minute
    it.render(63000);

    constexpr std::int64_t kOnset = 57330;  // 1.3 s
    const std::vector<float> left = it.channelOf(0, 0);
    for (std::int64_t i = 0; i < kOnset; ++i) ASSERT_EQ(left[i], 0.0f) << i;
    for (std::int64_t i = 0; i < 4410; ++i) ASSERT_NEAR(left[kOnset + i], faded(0.5, i), 1e-6) << i;
    for (std::int64_t i = kOnset + 4410; i < 63000; ++i) ASSERT_EQ(left[i], 0.0f) << i;
}

TEST(WholePath, ADiscontinuitySaysWhereTheGraphStands) {
    PlayingRig it;
    it.loadConstant(0, 4410, 0.5);
    it.start(960);
    it.rig.setDiscontinuity(0.5);
    it.note(0, 480);  // gone by
    it.note(0, 960);
    it.render(1000);
    const std::vector<float> left = it.channelOf(0, 0);
    for (std::int64_t i = 0; i < 1000; ++i) ASSERT_NEAR(left[i], faded(0.5, i), 1e-6) << i;
}

TEST(WholePath, ALiveNoteStartsWithTheNextBlock) {
    PlayingRig it;
    it.loadConstant(0, 4410, 0.5);
    it.render(512);
    const RawMidiEvent on{.time = 77, .status = 0x90, .data1 = it.keyOf(0), .data2 = 100};
    EXPECT_EQ(it.rig.queueRawInput(0, {&on, 1}), S_OK);
    it.render(1024);
    const std::vector<float> left = it.channelOf(0, 0);
    for (std::int64_t i = 0; i < 512; ++i) ASSERT_EQ(left[i], 0.0f) << i;
    for (std::int64_t i = 0; i < 1024; ++i) ASSERT_NEAR(left[512 + i], faded(0.5, i), 1e-6) << i;
}

TEST(WholePath, StemsSumToTheMix) {
    PlayingRig it({0, 1, 16});
    it.load(0, 3000, [](std::int64_t i, int c) { return std::sin(0.01 * i + c); });
    it.load(1, 2000, [](std::int64_t i, int c) { return std::cos(0.07 * i - c); });
    it.rig.sampler().SetPadOutput(0, 1);
    it.rig.sampler().SetPadOutput(1, 16);
    it.start();
    it.note(0, 0);
    it.note(1, 20);
    it.render(4000);
    ASSERT_EQ(it.audio[0].size(), 8000u);
    EXPECT_GT(*std::max_element(it.audio[1].begin(), it.audio[1].end()), 0.9f);
    EXPECT_GT(*std::max_element(it.audio[16].begin(), it.audio[16].end()), 0.9f);
    for (std::size_t i = 0; i < 8000; ++i) ASSERT_EQ(it.audio[0][i], it.audio[1][i] + it.audio[16][i]) << i;
}

TEST(WholePath, EveryPadHasItsPin) {
    std::vector<int> all;
    for (int pin = 0; pin < 17; ++pin) all.push_back(pin);
    PlayingRig it(all);
    it.start();
    for (int pad = 0; pad < 16; ++pad) {
        it.loadConstant(pad, 4410, (pad + 1) / 32.0);
        it.rig.sampler().SetPadOutput(pad, static_cast<std::uint32_t>(pad + 1));
        it.note(pad, 0);
    }
    it.render(1000);
    for (std::size_t i = kFadeIn * 2; i < 2000; ++i) {
        for (int pad = 0; pad < 16; ++pad)
            ASSERT_EQ(it.audio[pad + 1][i], (pad + 1) / 32.0f) << pad << " " << i;
        ASSERT_EQ(it.audio[0][i], 136 / 32.0f) << i;
    }
}

TEST(WholePath, MonoPlaysAsItIs) {
    PlayingRig it({0}, 1);
    it.load(0, 1000, [](std::int64_t i, int) { return i / 1024.0; });
    it.start();
    it.note(0, 0);
    it.render(1500);
    ASSERT_EQ(it.audio[0].size(), 1500u);
    for (std::int64_t i = kFadeIn; i < 1000; ++i) ASSERT_EQ(it.audio[0][i], i / 1024.0f) << i;
    for (std::int64_t i = 1000; i < 1500; ++i) ASSERT_EQ(it.audio[0][i], 0.0f) << i;
}

/// The mix and a channel of two overlapping notes, with silence before, between and behind them.
std::vector<float> twoNotes(const std::function<void(HostRig&)>& prepare) {
    PlayingRig it({0, 1, 2});
    it.load(0, 3000, [](std::int64_t i, int c) { return std::sin(0.01 * i + c); });
    it.load(1, 2000, [](std::int64_t i, int c) { return std::cos(0.07 * i - c); });
    it.rig.sampler().SetPadOutput(0, 1);
    prepare(it.rig);
    it.start();
    it.note(0, 100);
    it.note(1, 150);
    it.note(0, 400);
    it.render(14000);
    std::vector<float> all = it.audio[0];
    all.insert(all.end(), it.audio[1].begin(), it.audio[1].end());
    all.insert(all.end(), it.audio[2].begin(), it.audio[2].end());
    return all;
}

TEST(WholePath, TheSilenceFlagChangesNoAudio) {
    const std::vector<float> with = twoNotes([](HostRig&) {});
    const std::vector<float> without = twoNotes([](HostRig& rig) { rig.setSilenceFlag(false); });
    EXPECT_GT(*std::max_element(with.begin(), with.end()), 0.9f);
    EXPECT_EQ(with, without);
}

TEST(WholePath, ZerosAtTheInputAreSilence) {
    const std::vector<float> silence = twoNotes([](HostRig&) {});
    EXPECT_EQ(silence, twoNotes([](HostRig& rig) { rig.setInputZeros(); }));
    EXPECT_EQ(silence, twoNotes([](HostRig& rig) {
                  rig.setInputZeros();
                  rig.setSilenceFlag(false);
              }));
}

TEST(WholePath, TheSilenceFlagCanChangeBetweenBlocks) {
    PlayingRig it({0, 1});
    it.loadConstant(0, 700, 0.5);
    it.rig.sampler().SetPadOutput(0, 1);
    it.start();
    it.note(0, 0);
    it.render(512);
    it.rig.setSilenceFlag(false);
    it.render(1024);
    it.rig.setSilenceFlag(true);
    it.rig.synth().StopPlayback();  // a pin with a voice on it isn't silent, whatever the voice plays
    it.render(512);
    EXPECT_EQ(it.silentBlocks[1], 1);
    const std::vector<float> right = it.channelOf(1, 1);
    for (std::int64_t i = 0; i < 700; ++i) ASSERT_NEAR(right[i], faded(0.5, i), 1e-6) << i;
    for (std::int64_t i = 700; i < 2048; ++i) ASSERT_EQ(right[i], 0.0f) << i;
}

class InBlocksOf : public testing::TestWithParam<int> {};

TEST_P(InBlocksOf, ANoteHasTheSameAudio) {
    PlayingRig it({0, 1});
    ASSERT_EQ(it.rig.setBlock(GetParam()), S_OK);
    const auto wave = [](std::int64_t i, int c) {
        return static_cast<double>(static_cast<float>(std::sin(0.01 * i + c)));
    };
    it.load(0, 5000, wave);
    it.rig.sampler().SetPadOutput(0, 1);
    it.start();
    it.note(0, 64);  // 1470 frames, exactly
    it.render(8000);
    for (int pin : {0, 1}) {
        ASSERT_EQ(it.audio[pin].size(), 16000u);
        for (int c : {0, 1}) {
            const std::vector<float> out = it.channelOf(pin, static_cast<std::size_t>(c));
            for (std::int64_t i = 0; i < 1470; ++i) ASSERT_EQ(out[i], 0.0f) << i;
            for (std::int64_t i = 0; i < kFadeIn; ++i)
                ASSERT_NEAR(out[1470 + i], faded(wave(i, c), i), 1e-6) << i;
            for (std::int64_t i = kFadeIn; i < 5000; ++i)
                ASSERT_EQ(out[1470 + i], static_cast<float>(wave(i, c))) << i;
            for (std::int64_t i = 6470; i < 8000; ++i) ASSERT_EQ(out[i], 0.0f) << i;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(WholePath, InBlocksOf, testing::Values(1, 7, 64, 441, 512, 4096));

TEST(WholePath, BlocksThatGrowWhileANotePlaysBreakNothing) {
    PlayingRig it;
    it.loadConstant(0, 8000, 0.5);
    it.start();
    it.note(0, 0);
    it.render(1000);
    ASSERT_EQ(it.rig.setBlock(4096), S_OK);
    it.render(8000);
    const std::vector<float> left = it.channelOf(0, 0);
    for (std::int64_t i = 0; i < 8000; ++i) ASSERT_NEAR(left[i], faded(0.5, i), 1e-6) << i;
    for (std::int64_t i = 8000; i < 9000; ++i) ASSERT_EQ(left[i], 0.0f) << i;
}

TEST(WholePath, APadOnAPinThatIsNotConnectedIsHeardOnTheMix) {
    PlayingRig it({0, 1});
    it.loadConstant(0, 4410, 0.5);
    it.rig.sampler().SetPadOutput(0, 3);
    it.start();
    it.note(0, 0);
    it.render(512);
    EXPECT_EQ(it.channelOf(0, 0).back(), 0.5f);
    EXPECT_EQ(it.channelOf(1, 0).back(), 0.0f);
}

TEST(WholePath, StoppingThePlaybackEndsTheSoundAtOnce) {
    PlayingRig it;
    it.loadConstant(0, 44100, 0.5);
    it.start();
    it.note(0, 0);
    it.render(512);
    EXPECT_EQ(it.rig.synth().StopPlayback(), S_OK);
    it.render(512);
    EXPECT_EQ(it.channelOf(0, 0)[511], 0.5f);
    EXPECT_EQ(it.channelOf(0, 0)[512], 0.0f);
}

}  // namespace
}  // namespace marnoth::test::whole_path_test
