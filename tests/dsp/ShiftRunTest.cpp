#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>
#include <vector>

#include "dsp/ShiftRun.h"
#include "dsp/Waves.h"
#include "dsp/WideRegisters.h"

/// Every form in vectors beside the plain one, bit for bit, on runs made at random.
namespace marnoth::test::shift_run_test {
namespace {

struct Form {
    const char* name;
    shift::VectorForm render;
    std::int32_t together;  ///< frames in one vector
};

/// Those that this processor has.
std::vector<Form> forms() {
    std::vector<Form> all;
#if defined(__x86_64__)
    all.push_back({"2 frames", shift::renderBy2, 2});
    if (has256()) all.push_back({"4 frames", shift::renderBy4, 4});
    if (has512()) all.push_back({"8 frames", shift::renderBy8, 8});
#endif
    return all;
}

/// Random runs, most of them inside a wave, some over one of its ends.
class Runs {
public:
    explicit Runs(unsigned seed) : random(seed) {}

    std::int64_t between(std::int64_t least, std::int64_t most) {
        return std::uniform_int_distribution<std::int64_t>(least, most)(random);
    }
    double real(double least, double most) {
        return std::uniform_real_distribution<double>(least, most)(random);
    }
    bool oneIn(int n) { return between(1, n) == 1; }

    /// A run in `wave` without a destination.
    shift::Run in(const TestWave& wave) {
        shift::Run run;
        run.wave = wave.view();
        run.destChannels = oneIn(2) ? 2 : 1;
        run.speed = oneIn(4) ? std::exp2(static_cast<double>(between(-24, 24)) / 12) : real(0.01, 5);
        run.begin = oneIn(8) ? between(-300, 0) : between(0, 100000);
        run.end = run.begin + between(1, 300);
        run.base = between(-2, wave.frames) - shift::frameAt(run.begin, run.speed);
        // Where the last frame's read ends with the guard frame, or one frame further.
        if (oneIn(4)) run.base = wave.frames - 1 + between(0, 1) - shift::frameAt(run.end - 1, run.speed);
        run.gain = {static_cast<float>(real(-2, 2)), static_cast<float>(real(-2, 2))};
        if (oneIn(2)) run.fade = fadeOf(run);
        return run;
    }

private:
    shift::Fade fadeOf(const shift::Run& run) {
        const std::int64_t first = shift::frameAt(run.begin, run.speed);
        const std::int64_t length = shift::frameAt(run.end, run.speed) - first + between(1, 20000);
        return {first - between(0, 500), length, between(-400, 400)};
    }

    std::mt19937 random;
};

std::vector<float> destinationOf(const shift::Run& run) {
    std::vector<float> dest(static_cast<std::size_t>((run.end - run.begin) * run.destChannels));
    for (std::size_t i = 0; i < dest.size(); ++i) dest[i] = noise(static_cast<std::int64_t>(i), 1);
    return dest;
}

/// Frames from `begin` on that have the same bits in both.
testing::AssertionResult sameBits(const std::vector<float>& a, const std::vector<float>& b, std::size_t begin,
                                  std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
        if (std::bit_cast<std::uint32_t>(a[i]) != std::bit_cast<std::uint32_t>(b[i]))
            return testing::AssertionFailure() << "value " << i << ": " << a[i] << " and " << b[i];
    }
    return testing::AssertionSuccess();
}

std::vector<float> plainly(shift::Run run) {
    std::vector<float> dest = destinationOf(run);
    run.dest = dest.data();
    shift::renderPlain(run);
    return dest;
}

TEST(ShiftRun, EveryVectorFormGivesThePlainFormsBitsAndLeavesTheRest) {
    const TestWave waves[] = {{3000, 1, noise}, {3000, 2, noise}};
    Runs runs(20);
    int vectors = 0, fading = 0;
    for (int i = 0; i < 5000; ++i) {
        shift::Run run = runs.in(waves[i % 2]);
        if (!shift::isForVectors(run)) continue;
        ++vectors;
        fading += run.fade.length > 0;
        const std::vector<float> plain = plainly(run);
        const std::vector<float> before = destinationOf(run);
        for (const Form& form : forms()) {
            std::vector<float> dest = before;
            run.dest = dest.data();
            const std::int32_t done = form.render(run);
            ASSERT_EQ(done, (run.end - run.begin) / form.together * form.together);
            const auto values = static_cast<std::size_t>(done * run.destChannels);
            ASSERT_TRUE(sameBits(dest, plain, 0, values)) << form.name << ", run " << i;
            ASSERT_TRUE(sameBits(dest, before, values, dest.size())) << form.name << ", run " << i;
        }
    }
    EXPECT_GT(vectors, 1500);
    EXPECT_GT(fading, 500);
}

TEST(ShiftRun, AnyRunGivesThePlainFormsBits) {
    const TestWave waves[] = {{3000, 1, noise}, {3000, 2, noise}, {3, 1, noise}, {0, 2, noise}};
    Runs runs(21);
    int overTheEdge = 0;
    for (int i = 0; i < 5000; ++i) {
        shift::Run run = runs.in(waves[i % 4]);
        overTheEdge += !shift::isForVectors(run);
        std::vector<float> dest = destinationOf(run);
        run.dest = dest.data();
        shift::renderRun(run);
        ASSERT_TRUE(sameBits(dest, plainly(run), 0, dest.size())) << "run " << i;
    }
    EXPECT_GT(overTheEdge, 1500);
}

TEST(ShiftRun, ARunThatReadsUpToTheGuardFrameIsForVectorsAndOneFrameMoreIsNot) {
    const TestWave wave(1000, 2, noise);
    shift::Run run;
    run.wave = wave.view();
    run.end = 100;
    run.base = 900;
    EXPECT_TRUE(shift::isForVectors(run));
    run.base = 901;
    EXPECT_FALSE(shift::isForVectors(run));
    run.base = 0;
    EXPECT_TRUE(shift::isForVectors(run));
    run.base = -1;
    EXPECT_FALSE(shift::isForVectors(run));
    run.base = 500;
    run.fade = {0, 100, 400};
    EXPECT_TRUE(shift::isForVectors(run));
    run.fade.offset = 401;
    EXPECT_FALSE(shift::isForVectors(run));
}

TEST(ShiftRun, NumbersBeyondTheLanesAreForThePlainForm) {
    const TestWave wave(1000, 1, noise);
    const std::int64_t far = std::int64_t{1} << 33;
    shift::Run run;
    run.wave = wave.view();
    run.begin = far;
    run.end = far + 100;
    run.base = -far;
    EXPECT_FALSE(shift::isForVectors(run));
    run.begin = 100;
    run.end = 200;
    run.speed = static_cast<double>(far);
    EXPECT_FALSE(shift::isForVectors(run));
}

}  // namespace
}  // namespace marnoth::test::shift_run_test
