#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <utility>

#include "shellkit/TempFolder.h"
#include "shells/desktop/playing/Preview.h"
#include "support/WaveFile.h"

namespace marnoth::test::preview_test {
namespace {

constexpr std::uint32_t kRate = 44100;
constexpr std::int32_t kFrames = 64;

/// An instrument that plays a constant 0.25.
class Hum final : public AudioClient {
public:
    bool prepare(std::uint32_t, std::int32_t) override { return true; }
    void midi(std::int32_t, std::uint8_t, std::uint8_t, std::uint8_t) override {}
    void render(std::int32_t frames, OutputPointers outputs) override {
        for (float* const out : outputs)
            for (std::int32_t i = 0; out && i < frames; ++i) out[i] = 0.25f;
    }
    void follow(const LiveTransport&) override { ++followed; }
    MusicalPlace placeOf(std::int64_t) override {
        ++placed;
        return {};
    }
    void freewheel() override { ++freewheeled; }
    void dropout() override {}

    int followed = 0;
    int placed = 0;
    int freewheeled = 0;
};

/// A user at an audio system without a card.
class PreviewTest : public testing::Test {
protected:
    PreviewTest() { preview.prepare(kRate, kFrames); }
    /// A file of a constant level, the right side at half of it.
    std::string file(std::int64_t frames, double level = 0.5) {
        const std::string name = std::to_string(frames) + ".wav";
        WaveFile()
            .floats()
            .channels(2)
            .rate(kRate)
            .frames(frames, [=](auto, int channel) { return channel == 0 ? level : level / 2; })
            .write(folder_ / name);
        return folder_.name(name);
    }
    void render() {
        std::array<float*, 2> outputs{left.data(), right.data()};
        preview.render(kFrames, outputs);
    }

    Hum hum;
    MasterLevel level;
    Preview preview{hum, level};
    std::array<float, kFrames> left{};
    std::array<float, kFrames> right{};
    TempFolder folder_;
};

TEST_F(PreviewTest, AFileIsHeardBehindTheInstrumentOnceAndToItsEnd) {
    ASSERT_EQ(preview.listener().play(file(3 * kFrames)), "");
    for (int block = 0; block < 3; ++block) {
        EXPECT_TRUE(preview.listener().isPlaying());
        render();
        EXPECT_FLOAT_EQ(left.front(), 0.75f);
        EXPECT_FLOAT_EQ(left.back(), 0.75f);
        EXPECT_FLOAT_EQ(right.back(), 0.5f);
    }
    EXPECT_FALSE(preview.listener().isPlaying());
    for (int block = 0; block < 20; ++block) render();
    EXPECT_NEAR(left.back(), 0.25f, 1e-6f);
}

TEST_F(PreviewTest, ItIsAsLoudAsTheMixIsSet) {
    level.set(0.5f);
    ASSERT_EQ(preview.listener().play(file(2 * kFrames)), "");
    render();
    EXPECT_FLOAT_EQ(left.back(), 0.5f);
}

TEST_F(PreviewTest, StoppingOrChangingItDoesntClick) {
    ASSERT_EQ(preview.listener().play(file(100 * kFrames)), "");
    render();
    preview.listener().stop();
    EXPECT_FALSE(preview.listener().isPlaying());
    float before = left.back();
    render();
    // Twice the fall in a frame of half of full scale.
    EXPECT_LT(std::abs(left.front() - before), 0.02f);
    before = left.front();
    for (const float value : left) EXPECT_LT(std::abs(value - std::exchange(before, value)), 0.02f);
}

TEST_F(PreviewTest, AnotherFileTakesThePlaceOfTheFirst) {
    const std::string other = file(kFrames, 0.125);
    ASSERT_EQ(preview.listener().play(file(100 * kFrames)), "");
    render();
    ASSERT_EQ(preview.listener().play(other), "");
    render();
    EXPECT_FLOAT_EQ(left.back(), 0.375f);
    EXPECT_FALSE(preview.listener().isPlaying());
    // One that nobody has taken over goes too.
    ASSERT_EQ(preview.listener().play(other), "");
    ASSERT_EQ(preview.listener().play(other), "");
    EXPECT_TRUE(preview.listener().isPlaying());
    render();
    EXPECT_FALSE(preview.listener().isPlaying());
}

TEST_F(PreviewTest, AChangeOfRateEndsIt) {
    ASSERT_EQ(preview.listener().play(file(100 * kFrames)), "");
    render();
    preview.prepare(48000, kFrames);
    render();
    EXPECT_FALSE(preview.listener().isPlaying());
}

TEST_F(PreviewTest, TheSystemsTransportReachesTheInstrument) {
    preview.follow({});
    preview.placeOf(0);
    preview.freewheel();
    EXPECT_EQ(hum.followed, 1);
    EXPECT_EQ(hum.placed, 1);
    EXPECT_EQ(hum.freewheeled, 1);
}

TEST_F(PreviewTest, WhatCantBeHeardIsSaid) {
    EXPECT_NE(preview.listener().play(folder_.name("none.wav")), "");
    writeText(folder_ / "text.wav", "no sound");
    EXPECT_NE(preview.listener().play(folder_.name("text.wav")), "");
    EXPECT_FALSE(preview.listener().isPlaying());
    Preview unplugged(hum, level);
    EXPECT_NE(unplugged.listener().play(file(kFrames)), "");
}

}  // namespace
}  // namespace marnoth::test::preview_test
