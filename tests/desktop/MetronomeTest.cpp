#include <gtest/gtest.h>

#include <cmath>

#include "shells/desktop/playing/MasterLevel.h"
#include "shells/desktop/playing/Metronome.h"

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

TEST(Metronome, ABeatOnTheEdgeOfTwoStretchesIsHeardOnce) {
    for (const double rounding : {-1e-9, 0.0, 1e-9}) {
        Metronome metronome = newMetronome();
        const Played before(metronome, kBeat, 0, kStep, true);
        const Played behind(metronome, kBeat, 960 + rounding, kStep, true);
        EXPECT_EQ(before.onsets(), std::vector<int>{1});
        EXPECT_EQ(behind.onsets().size(), 1u) << rounding;
        EXPECT_LE(behind.onsets()[0], 2) << rounding;
    }
}

TEST(Metronome, AJumpBeginsItsBeatsAnew) {
    Metronome metronome = newMetronome();
    const Played before(metronome, 2000, 900, kStep, true);
    const Played there(metronome, kBeat, 0, kStep, true);
    EXPECT_EQ(there.onsets()[0], 1);
    const Played off(metronome, kBeat, 960, kStep, false);
    EXPECT_EQ(off.loudest(), 0.0f);
    EXPECT_EQ(Played(metronome, kBeat, 1920, kStep, true).onsets(), std::vector<int>{1});
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

TEST(MasterLevel, ANewLevelGlidesForAHundredthOfASecondWhateverTheBlocks) {
    for (const std::size_t frames : {1, 64, 1000}) {
        MasterLevel master;
        master.setRate(8000);
        master.set(0.5f);
        std::vector<float> heard;
        while (heard.size() < 200) {
            std::vector<float> left(frames, 1.0f);
            std::vector<float> right(frames, -1.0f);
            master.apply(left, right);
            heard.insert(heard.end(), left.begin(), left.end());
            EXPECT_EQ(right[0], -left[0]);
        }
        // 80 frames, a half in equal steps.
        for (std::size_t frame = 0; frame < 80; ++frame)
            ASSERT_NEAR(heard[frame], 1.0 - 0.5 * static_cast<double>(frame + 1) / 80, 1e-5) << frame;
        EXPECT_EQ(heard[79], 0.5f) << "and is met exactly";
        EXPECT_EQ(heard[150], 0.5f);
    }
}

TEST(MasterLevel, BackAtFullLevelTheMixIsAsItIs) {
    MasterLevel master;
    master.setRate(800);
    std::vector<float> mix(8, 0.3f);
    std::vector<float> right = mix;
    master.set(0.0f);
    master.apply(mix, right);
    master.set(1.0f);
    master.apply(mix, right);
    mix.assign(8, 0.3f);
    master.apply(mix, right);
    EXPECT_EQ(mix, std::vector<float>(8, 0.3f));
}

}  // namespace
}  // namespace marnoth::test::metronome_test
