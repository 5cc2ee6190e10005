#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <future>
#include <limits>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "dsp/CpuFeatures.h"
#include "dsp/FastMix.h"
#include "dsp/MixKernels.h"

/// The twelve kernels that have a second body for aligned runs, bit for bit.
namespace marnoth::test::fast_mix_test {
namespace {

constexpr int kRows[] = {4, 6, 14, 20, 22, 30};

struct Member {
    int row;

    int src() const { return (row & 8) != 0 ? 2 : 1; }
    int dst() const { return (row & 2) != 0 ? 2 : 1; }
    bool replaces() const { return (row & 16) != 0; }
};

template <class Float>
MixKernel kernelOf(Member member) {
    return sizeof(Float) == 4 ? mix32Table[member.row] : mix64Table[member.row];
}

template <class Float>
auto bitsOf(Float value) {
    using Word = std::conditional_t<sizeof(Float) == 4, std::uint32_t, std::uint64_t>;
    return std::bit_cast<Word>(value);
}

struct Gains {
    double left;
    double right;
};

/// Samples that use all the digits of their type, the same in each run.
template <class Float>
class Noise {
public:
    explicit Noise(std::uint64_t seed) : state(seed) {}
    Float next() {
        state = state * 6364136223846793005u + 1442695040888963407u;
        return static_cast<Float>(static_cast<double>(static_cast<std::int64_t>(state)) * 0x1p-63);
    }

private:
    std::uint64_t state;
};

/// A source and a destination that begin `offset` samples behind a multiple of 16 bytes. The source ends with
/// its last sample, so that the address sanitizer sees whoever reads on.
template <class Float>
struct Run {
    static constexpr int kGuards = 9;

    Run(Member member, int frames, int srcOffset, int destOffset, int guards = kGuards)
        : member(member),
          frames(frames),
          srcOffset(srcOffset),
          destOffset(destOffset),
          source(static_cast<std::size_t>(srcOffset + frames * member.src())),
          before(static_cast<std::size_t>(destOffset + frames * member.dst() + guards)) {
        Noise<Float> noise(static_cast<std::uint64_t>(frames * 100 + srcOffset * 10 + destOffset));
        for (auto& sample : source) sample = noise.next();
        for (auto& sample : before) sample = noise.next();
    }

    bool isAligned() const {
        return (srcOffset * sizeof(Float)) % 16 == 0 && (destOffset * sizeof(Float)) % 16 == 0;
    }

    MixArgs args(std::vector<Float>& dest, Gains gains) const {
        MixArgs args;
        args.dest = dest.data() + destOffset;
        args.src = source.data() + srcOffset;
        args.count = frames;
        args.gainL = gains.left;
        args.gainR = gains.right;
        return args;
    }

    /// The destination after a call of the member's kernel.
    std::vector<Float> mixed(Gains gains) const {
        std::vector<Float> dest = before;
        MixArgs args = this->args(dest, gains);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(dest.data()) % 16, 0u);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(source.data()) % 16, 0u);
        kernelOf<Float>(member)(&args);
        EXPECT_EQ(bitsOf(args.gainL), bitsOf(gains.left)) << "gains come back as they were";
        EXPECT_EQ(bitsOf(args.gainR), bitsOf(gains.right));
        return dest;
    }

    /// The same from the rules: a plain product is one of doubles that is rounded to the destination's type;
    /// a fast one is of the samples' own type, gain included.
    std::vector<Float> expected(Gains gains, bool fast) const {
        std::vector<Float> dest = before;
        for (int i = 0; i < frames * member.dst(); ++i) {
            const bool right = member.dst() == 2 && i % 2 == 1;
            const Float sample = source[srcOffset + (member.src() == member.dst() ? i : i / 2)];
            const double gain = right ? gains.right : gains.left;
            Float product;
            if (fast) {
                product = sample * static_cast<Float>(gain);
            } else {
                product = static_cast<Float>(static_cast<double>(sample) * gain);
            }
            Float& place = dest[destOffset + i];
            place = member.replaces() ? product : place + product;
        }
        return dest;
    }

    Member member;
    int frames;
    int srcOffset;
    int destOffset;
    std::vector<Float> source;
    std::vector<Float> before;
};

template <class Float>
testing::AssertionResult sameBits(const std::vector<Float>& a, const std::vector<Float>& b) {
    if (a.size() != b.size()) return testing::AssertionFailure() << "lengths differ";
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (bitsOf(a[i]) != bitsOf(b[i]))
            return testing::AssertionFailure() << "sample " << i << ": " << a[i] << " and " << b[i];
    }
    return testing::AssertionSuccess();
}

constexpr Gains kGains[] = {
    {0.1, 0.7},                                          // fit neither f32 nor each other
    {0.5, -0.75},                                        // fit
    {0.3, 0.5},                                          // one does
    {1, 1},       {1, 0.3},                              // one is 1
    {0.3, 1},     {0, 0},   {1 + 0x1p-30, 1 + 0x1p-30},  // 1 in f32 alone
};

template <class Float>
bool takesFastForm(const Run<Float>& run) {
    return (sizeof(Float) == 4 ? HasSse() : HasSse2()) != 0 && run.isAligned();
}

template <class Float>
class FastMix : public testing::Test {
public:
    static constexpr int kPerVector = 16 / sizeof(Float);
};
using Families = testing::Types<float, double>;
TYPED_TEST_SUITE(FastMix, Families);

TYPED_TEST(FastMix, AlignedRunsRoundTheGainAndAllOthersDoNot) {
    for (const int row : kRows) {
        for (int frames = 0; frames <= 40; ++frames) {
            for (int offsets = 0; offsets < this->kPerVector * this->kPerVector; ++offsets) {
                const Run<TypeParam> run(Member{row}, frames, offsets % this->kPerVector,
                                         offsets / this->kPerVector);
                for (const Gains gains : kGains) {
                    ASSERT_TRUE(sameBits(run.mixed(gains), run.expected(gains, takesFastForm(run))))
                        << "row " << row << ", " << frames << " frames, offsets " << run.srcOffset << " and "
                        << run.destOffset << ", gains " << gains.left << " and " << gains.right;
                }
            }
        }
    }
}

TYPED_TEST(FastMix, LongRunsAreNoDifferent) {
    for (const int row : kRows) {
        for (const int frames : {127, 128, 1000, 4099}) {
            for (const int offset : {0, 1}) {
                const Run<TypeParam> run(Member{row}, frames, offset, offset);
                for (const Gains gains : kGains) {
                    ASSERT_TRUE(sameBits(run.mixed(gains), run.expected(gains, takesFastForm(run)))) << row;
                }
            }
        }
    }
}

TYPED_TEST(FastMix, NothingIsReadOrWrittenBehindTheRun) {
    // No guards: what is asked for here is asked of the address sanitizer.
    for (const int row : kRows) {
        for (int frames = 0; frames <= 40; ++frames) {
            for (const int offset : {0, 1}) {
                const Run<TypeParam> run(Member{row}, frames, offset, offset, 0);
                ASSERT_TRUE(sameBits(run.mixed({0.1, 0.7}), run.expected({0.1, 0.7}, takesFastForm(run))));
            }
        }
    }
}

TYPED_TEST(FastMix, AnUnalignedEndOfEitherSideIsEnoughForThePlainBody) {
    if (HasSse() == 0) GTEST_SKIP() << "no fast forms here";
    for (const int row : kRows) {
        int differ = 0;
        const Run<TypeParam> aligned(Member{row}, 40, 0, 0);
        const auto fast = aligned.expected({0.1, 0.7}, true);
        const auto plain = aligned.expected({0.1, 0.7}, false);
        for (std::size_t i = 0; i < fast.size(); ++i) differ += bitsOf(fast[i]) != bitsOf(plain[i]);
        // The float family's bodies can be told apart; the double family rounds nothing.
        EXPECT_EQ(differ > 0, sizeof(TypeParam) == 4) << row;
        EXPECT_TRUE(sameBits(aligned.mixed({0.1, 0.7}), fast)) << row;
        for (const auto& [src, dest] : {std::pair(0, 1), std::pair(1, 0), std::pair(1, 1)}) {
            const Run<TypeParam> run(Member{row}, 40, src, dest);
            EXPECT_TRUE(sameBits(run.mixed({0.1, 0.7}), run.expected({0.1, 0.7}, false))) << row;
        }
    }
}

TYPED_TEST(FastMix, GainsOfOneGiveAPlainSum) {
    for (const int row : {4, 14}) {
        const Run<TypeParam> run(Member{row}, 39, 0, 0);
        const auto dest = run.mixed({1, 1});
        for (std::size_t i = 0; i < run.source.size(); ++i) {
            ASSERT_EQ(bitsOf(dest[i]), bitsOf<TypeParam>(run.before[i] + run.source[i])) << row << " " << i;
        }
    }
}

template <class Float>
bool sameOrBothNotANumber(Float a, Float b) {
    return (std::isnan(a) && std::isnan(b)) || bitsOf(a) == bitsOf(b);
}

TYPED_TEST(FastMix, InfinitiesAndNotANumberGoTheirWay) {
    using Limits = std::numeric_limits<TypeParam>;
    const TypeParam specials[] = {Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(), Limits::max(),
                                  Limits::lowest(),   TypeParam{0},        -TypeParam{0},       TypeParam{1}};
    const double infinite = std::numeric_limits<double>::infinity();
    for (const int row : kRows) {
        Run<TypeParam> run(Member{row}, 32, 0, 0);
        for (std::size_t i = 0; i < run.source.size(); ++i) run.source[i] = specials[i % 8];
        for (std::size_t i = 0; i < run.before.size(); ++i) run.before[i] = specials[i / 8 % 8];
        for (const Gains gains : {Gains{2, -2}, Gains{0, 1}, Gains{1, 1}, Gains{infinite, -infinite},
                                  Gains{std::nan(""), 1}, Gains{1e300, 0.1}}) {
            const auto dest = run.mixed(gains);
            const auto expected = run.expected(gains, takesFastForm(run));
            for (std::size_t i = 0; i < dest.size(); ++i) {
                ASSERT_TRUE(sameOrBothNotANumber(dest[i], expected[i]))
                    << row << " sample " << i << ": " << dest[i] << " for " << expected[i];
            }
        }
    }
}

#if defined(__x86_64__)

constexpr unsigned kFlush = 0x8000;
/// All but the flags that arithmetic leaves behind.
constexpr unsigned kControl = 0xFFC0;
constexpr unsigned kUsual = 0x1F80;

/// Runs `work` on a thread of its own that keeps denormals until told otherwise: a thread may inherit the
/// mode of the one that starts it.
template <class Work>
void onFreshThread(const Work& work) {
    std::thread([&work] {
        _mm_setcsr(kUsual);
        work();
    }).join();
}

unsigned modeOfThread() {
    return _mm_getcsr() & kControl;
}

/// Whether ordinary arithmetic, out of any kernel, gives 0 for a result below the normal numbers.
template <class Float>
bool flushes() {
    const volatile Float small = std::numeric_limits<Float>::min();
    const volatile Float half = Float{0.5};
    return small * half == 0;
}

template <class Float>
Float flushed(Float value) {
    return std::fpclassify(value) == FP_SUBNORMAL ? std::copysign(Float{0}, value) : value;
}

/// Sources and destinations around the smallest normal number.
template <class Float>
Run<Float> tinyRun(int row, int srcOffset, int destOffset) {
    constexpr Float least = std::numeric_limits<Float>::denorm_min();
    constexpr Float normal = std::numeric_limits<Float>::min();
    const Float tiny[] = {least, -least, normal / 2, -normal, normal, normal - least, Float{0}, 1};
    Run<Float> run(Member{row}, 35, srcOffset, destOffset);
    for (std::size_t i = 0; i < run.source.size(); ++i) run.source[i] = tiny[i % 8];
    for (std::size_t i = 0; i < run.before.size(); ++i) run.before[i] = tiny[i / 8 % 8];
    return run;
}

/// What a flushing thread gives: of products and of sums, nothing below the normal numbers is left. Computed
/// with denormals, on a thread that keeps them.
template <class Float>
std::vector<Float> expectedFlushed(const Run<Float>& run, Gains gains) {
    std::vector<Float> dest = run.before;
    const bool sumOnly =
        gains.left == 1 && gains.right == 1 && run.member.src() == run.member.dst() && !run.member.replaces();
    for (int i = 0; i < run.frames * run.member.dst(); ++i) {
        const Float sample = run.source[run.srcOffset + (run.member.src() == run.member.dst() ? i : i / 2)];
        const bool right = run.member.dst() == 2 && i % 2 == 1;
        const auto gain = static_cast<Float>(right ? gains.right : gains.left);
        const Float product = sumOnly ? sample : flushed(sample * gain);
        Float& place = dest[run.destOffset + i];
        place = run.member.replaces() ? product : flushed(place + product);
    }
    return dest;
}

TYPED_TEST(FastMix, TheFirstFastCallOfAThreadFlushesWhatIsBelowTheNormalNumbers) {
    for (const int row : kRows) {
        onFreshThread([row] {
            const auto run = tinyRun<TypeParam>(row, 0, 0);
            for (const Gains gains : {Gains{0.5, 0.25}, Gains{1, 1}, Gains{1, 0}, Gains{0, 1}}) {
                _mm_setcsr(kUsual);
                const auto expected = expectedFlushed(run, gains);
                const auto dest = run.mixed(gains);
                EXPECT_EQ(modeOfThread(), kUsual | kFlush);
                EXPECT_TRUE(flushes<float>());
                EXPECT_TRUE(flushes<double>());
                EXPECT_TRUE(sameBits(dest, expected)) << row << " " << gains.left << " " << gains.right;
            }
        });
    }
}

TYPED_TEST(FastMix, PlainBodiesAloneKeepThem) {
    for (const int row : kRows) {
        onFreshThread([row] {
            for (const auto& [src, dest] : {std::pair(0, 1), std::pair(1, 0), std::pair(1, 1)}) {
                const auto run = tinyRun<TypeParam>(row, src, dest);
                for (const Gains gains : {Gains{0.5, 0.25}, Gains{1, 1}, Gains{0.1, 0.7}}) {
                    EXPECT_TRUE(sameBits(run.mixed(gains), run.expected(gains, false))) << row;
                }
            }
            EXPECT_EQ(modeOfThread(), kUsual);
            EXPECT_FALSE(flushes<TypeParam>());
        });
    }
}

TYPED_TEST(FastMix, BehindAFastCallPlainBodiesOfTheThreadFlushToo) {
    for (const int row : kRows) {
        onFreshThread([row] {
            const auto run = tinyRun<TypeParam>(row, 1, 1);
            // Gains of which none is 1: a plain body always multiplies.
            const auto expected = expectedFlushed(run, {0.5, 0.25});
            tinyRun<TypeParam>(row, 0, 0).mixed({0.5, 0.25});
            EXPECT_TRUE(sameBits(run.mixed({0.5, 0.25}), expected)) << row;
        });
    }
}

TYPED_TEST(FastMix, OtherThreadsAreNotTouched) {
    std::promise<void> started, mixed;
    bool keeps = false;
    std::thread other([&] {
        _mm_setcsr(kUsual);
        started.set_value();
        mixed.get_future().wait();
        keeps = !flushes<TypeParam>() && modeOfThread() == kUsual;
    });
    started.get_future().wait();
    onFreshThread([] {
        tinyRun<TypeParam>(14, 0, 0).mixed({0.5, 0.25});
        EXPECT_TRUE(flushes<TypeParam>());
    });
    mixed.set_value();
    other.join();
    EXPECT_TRUE(keeps);
}

TYPED_TEST(FastMix, ACallWithoutFramesLeavesTheThreadAsItIs) {
    onFreshThread([] {
        for (const int row : kRows) {
            for (const int count : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
                const Run<TypeParam> run(Member{row}, 8, 0, 0);
                auto dest = run.before;
                MixArgs args = run.args(dest, {0.1, 0.7});
                args.count = count;
                kernelOf<TypeParam>(Member{row})(&args);
                EXPECT_TRUE(sameBits(dest, run.before));
            }
        }
        EXPECT_EQ(modeOfThread(), kUsual);
    });
}

TYPED_TEST(FastMix, OnlyTheSixRowsHaveASecondBody) {
    onFreshThread([] {
        const std::vector<TypeParam> source(64, TypeParam{1});
        for (int row = 0; row < 32; ++row) {
            _mm_setcsr(kUsual);
            std::vector<TypeParam> dest(64);
            MixArgs args;
            args.dest = dest.data();
            args.src = source.data();
            args.count = 32;
            kernelOf<TypeParam>(Member{row})(&args);
            const bool fast = std::find(std::begin(kRows), std::end(kRows), row) != std::end(kRows);
            EXPECT_EQ(modeOfThread(), fast ? kUsual | kFlush : kUsual) << row;
        }
    });
}

/// The body of 128-bit vectors, which a processor with wider ones doesn't take.
template <class Float, int row>
std::vector<Float> mixedInNarrowVectors(const Run<Float>& run, Gains gains) {
    using From = mix::Source<Float, (row & 8) != 0>;
    using To = mix::Dest<Float, (row & 2) != 0, (row & 16) != 0 ? mix::Mode::Replace : mix::Mode::Add>;
    std::vector<Float> dest = run.before;
    const MixArgs args = run.args(dest, gains);
    if constexpr (From::channels == To::channels) {
        if (gains.left == 1 && gains.right == 1) {
            mix::mixVectors<From, To>(args, mix::Unity{});
            return dest;
        }
    }
    mix::mixVectors<From, To>(args, mix::gainsIn<Float>(args));
    return dest;
}

template <class Float, int row>
void checkNarrowVectors() {
    for (int frames = 0; frames <= 40; ++frames) {
        for (int offset = 0; offset < 16; ++offset) {
            for (const int guards : {0, Run<Float>::kGuards}) {
                const Run<Float> run(Member{row}, frames, offset % 4, offset / 4, guards);
                for (const Gains gains : kGains) {
                    ASSERT_TRUE(
                        sameBits(mixedInNarrowVectors<Float, row>(run, gains), run.expected(gains, true)))
                        << row << ", " << frames << " frames, offsets " << offset;
                }
            }
        }
    }
}

TYPED_TEST(FastMix, NarrowVectorsGiveTheSameBits) {
    checkNarrowVectors<TypeParam, 4>();
    checkNarrowVectors<TypeParam, 6>();
    checkNarrowVectors<TypeParam, 14>();
    checkNarrowVectors<TypeParam, 20>();
    checkNarrowVectors<TypeParam, 22>();
    checkNarrowVectors<TypeParam, 30>();
}

#endif

}  // namespace
}  // namespace marnoth::test::fast_mix_test
