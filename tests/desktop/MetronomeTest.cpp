#include <gtest/gtest.h>

#include <cmath>

#include "shells/desktop/MasterLevel.h"
#include "shells/desktop/Metronome.h"

namespace marnoth::test::metronome_test {
namespace {

constexpr std::uint32_t kRate = 48000;
/// At 120 beats per minute.
constexpr double kStep = 960.0 * 2 / kRate;
constexpr int kBeat = 24000;  ///< frames

struct Played {
    std::vector<float> left;
    std::vector<float> right;

    Played(Metronome& metronome, int frames, double tick, double step, bool on)
        : left(static_cast<std::size_t>(frames)), right(left.size()) {
        metronome.add(left, right, tick, step, on);
    }
    /// Frames at which sound begins behind silence.
    std::vector<int> onsets() const {
        std::vector<int> found;
        int silent = 1000;
        for (int frame = 0; frame < static_cast<int>(left.size()); ++frame) {
            if (std::abs(left[static_cast<std::size_t>(frame)]) > 1e-3f) {
                if (silent >= 1000) found.push_back(frame);
                silent = 0;
            } else {
                ++silent;
            }
        }
        return found;
    }
    float loudest() const {
        float most = 0;
        for (const float sample : left) most = std::max(most, std::abs(sample));
        return most;
    }
};

Metronome newMetronome() {
    Metronome metronome;
    metronome.setRate(kRate);
    return metronome;
}

TEST(Metronome, ClicksOnEveryBeatOnBothSides) {
    Metronome metronome = newMetronome();
    const Played played(metronome, 3 * kBeat, 0, kStep, true);
    // A sine begins at 0: the first frame that is heard is the one behind.
    EXPECT_EQ(played.onsets(), (std::vector<int>{1, kBeat + 1, 2 * kBeat + 1}));
    EXPECT_EQ(played.left, played.right);
    EXPECT_NEAR(played.loudest(), 0.25, 0.03);
}

TEST(Metronome, BlocksMayEndAnywhere) {
    Metronome whole = newMetronome();
    Metronome cut = newMetronome();
    const Played together(whole, 2 * kBeat, 100, kStep, true);
    std::vector<float> parts;
    for (int done = 0; done < 2 * kBeat; done += 480) {
        const Played part(cut, 480, 100 + kStep * done, kStep, true);
        parts.insert(parts.end(), part.left.begin(), part.left.end());
    }
    EXPECT_EQ(parts, together.left);
}

TEST(Metronome, TheFirstOfFourIsHigher) {
    Metronome metronome = newMetronome();
    const auto crossings = [&](double tick) {
        const Played played(metronome, 2000, tick, kStep, true);
        int count = 0;
        for (std::size_t i = 1; i < 1000; ++i) count += (played.left[i - 1] < 0) != (played.left[i] < 0);
        return count;
    };
    const int first = crossings(0);
    const int second = crossings(960);
    EXPECT_GT(first, second);
    // 1760 and 1175 Hz, two crossings each, in 1000 of 48000 frames.
    EXPECT_NEAR(first, 2 * 1760 * 1000 / 48000.0, 2);
    EXPECT_NEAR(second, 2 * 1175 * 1000 / 48000.0, 2);
}

TEST(Metronome, IsSilentWhenItIsOffAndWhileTheTransportStands) {
    Metronome metronome = newMetronome();
    EXPECT_EQ(Played(metronome, kBeat, 0, kStep, false).loudest(), 0.0f);
    EXPECT_EQ(Played(metronome, kBeat, 0, 0.0, true).loudest(), 0.0f);
}

TEST(Metronome, AClickThatHasBegunGoesOnWhenTheTransportStops) {
    Metronome metronome = newMetronome();
    const Played begun(metronome, 10, 0, kStep, true);
    EXPECT_GT(Played(metronome, 1000, 0.4, 0.0, true).loudest(), 0.05f);
}

TEST(MasterLevel, AtFullLevelTheMixStaysAsItIs) {
    MasterLevel master;
    std::vector<float> left{0.1f, -0.3f};
    std::vector<float> right{0.7f, 0.2f};
    master.apply(left, right);
    EXPECT_EQ(left, (std::vector<float>{0.1f, -0.3f}));
    EXPECT_EQ(master.takePeak(0), 0.3f);
    EXPECT_EQ(master.takePeak(1), 0.7f);
    EXPECT_EQ(master.takePeak(1), 0.0f) << "taken";
}

TEST(MasterLevel, ANewLevelGlidesOverABlock) {
    MasterLevel master;
    master.set(0.5f);
    std::vector<float> left(4, 1.0f);
    std::vector<float> right(4, -1.0f);
    master.apply(left, right);
    EXPECT_EQ(left, (std::vector<float>{0.875f, 0.75f, 0.625f, 0.5f}));
    master.apply(left, right);
    EXPECT_EQ(left[0], 0.4375f) << "and holds";
}

}  // namespace
}  // namespace marnoth::test::metronome_test
