#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "dsp/CpuFeatures.h"
#include "dsp/MixKernels.h"

namespace marnoth::test::mix_kernels_test {
namespace {

/// What a row of a table promises, as a musician's table would list it.
struct Row {
    int bits;  ///< 16, 24 or 32; 32 stands for 64 in the double family
    int src;
    int dst;
    bool replace;
    bool ramped;

    bool hasFastForm() const { return bits == 32 && src <= dst && !ramped; }
};

constexpr Row kRows[32] = {
    {16, 1, 1, false, false}, {16, 1, 1, false, true}, {16, 1, 2, false, false}, {16, 1, 2, false, true},
    {32, 1, 1, false, false}, {32, 1, 1, false, true}, {32, 1, 2, false, false}, {32, 1, 2, false, true},
    {16, 2, 1, false, false}, {16, 2, 1, false, true}, {16, 2, 2, false, false}, {16, 2, 2, false, true},
    {32, 2, 1, false, true},  {32, 2, 1, false, true}, {32, 2, 2, false, false}, {32, 2, 2, false, true},
    {16, 1, 1, true, false},  {16, 1, 1, true, true},  {16, 1, 2, true, false},  {16, 1, 2, true, true},
    {32, 1, 1, true, false},  {32, 1, 1, true, true},  {32, 1, 2, true, false},  {32, 1, 2, true, true},
    {16, 2, 1, true, true},   {16, 2, 1, true, true},  {16, 2, 2, true, false},  {16, 2, 2, true, true},
    {32, 2, 1, true, false},  {32, 2, 1, true, true},  {32, 2, 2, true, false},  {32, 2, 2, true, true},
};
constexpr Row kRows24[4] = {
    {24, 1, 1, false, false}, {24, 1, 1, false, true}, {24, 1, 1, true, false}, {24, 1, 1, true, true}};

/// The sample that the source buffer holds at `index`, chosen to be exact in every format that carries it.
double sampleAt(int bits, int index) {
    static constexpr int kIntegers16[] = {-32768, 32767, 0, 1, -1, 12345, -20000, 255, -256};
    static constexpr int kIntegers24[] = {-8388608, 8388607, 0, 1, -1, 65536, -65537, 0x123456, -0x345678};
    if (bits == 16) return kIntegers16[index % 9];
    if (bits == 24) return kIntegers24[index % 9];
    return static_cast<float>(std::sin(index * 1.7) * 0.9);
}

template <class Float>
std::vector<unsigned char> sourceBytes(int bits, int samples) {
    std::vector<unsigned char> bytes;
    for (int i = 0; i < samples; ++i) {
        const double value = sampleAt(bits, i);
        if (bits == 32) {
            const auto exact = static_cast<Float>(value);
            const auto* raw = reinterpret_cast<const unsigned char*>(&exact);
            bytes.insert(bytes.end(), raw, raw + sizeof exact);
        } else {
            const auto integer = static_cast<std::uint32_t>(static_cast<std::int32_t>(value));
            for (int byte = 0; byte < bits / 8; ++byte) bytes.push_back((integer >> (8 * byte)) & 0xFF);
        }
    }
    return bytes;
}

struct Side {
    double gain;
    double step;
    double curve;

    /// In closed form; the kernels get there by running sums.
    long double at(int i, bool ramped) const {
        if (!ramped) return gain;
        const long double n = i;
        return gain + n * step + n * (n - 1) / 2 * curve;
    }
};

/// The side as a kernel of the family hears it that starts at aligned places: fast forms round the gain.
template <class Float>
Side asHeard(const Row& row, Side side) {
    const bool fast = HasSse() != 0 && row.hasFastForm();
    if (fast) side.gain = static_cast<Float>(side.gain);
    return side;
}

template <class Float>
Float start(int index) {
    return static_cast<Float>(0.125 * (index % 17) - 1);
}

/// One destination sample by the rules, from scratch.
template <class Float>
Float expectedSample(const Row& row, int frame, int side, const Side& left, const Side& right) {
    const auto product = [&](int sourceSide, const Side& gain) {
        return static_cast<double>(sampleAt(row.bits, frame * row.src + sourceSide)) *
               static_cast<double>(gain.at(frame, row.ramped));
    };
    double mixed = 0;
    if (row.src == 2 && row.dst == 1) {
        mixed = product(0, left) + product(1, right);
    } else {
        mixed = product(row.src == 2 ? side : 0, side == 0 ? left : right);
    }
    const auto rounded = static_cast<Float>(mixed);
    return row.replace ? rounded : start<Float>(frame * row.dst + side) + rounded;
}

template <class Float>
void checkKernel(MixKernel kernel, const Row& row, int frames, Side left, Side right,
                 const std::string& name) {
    const auto source = sourceBytes<Float>(row.bits, frames * row.src);
    std::vector<Float> dest(frames * row.dst + 4);
    for (int i = 0; i < static_cast<int>(dest.size()); ++i) dest[i] = start<Float>(i);
    MixArgs args;
    args.dest = dest.data();
    args.src = source.data();
    args.count = frames;
    args.gainL = left.gain;
    args.gainR = right.gain;
    args.stepL = left.step;
    args.stepR = right.step;
    args.curveL = left.curve;
    args.curveR = right.curve;
    kernel(&args);

    // What a vector holds begins at a multiple of 16 bytes.
    const Side heardLeft = asHeard<Float>(row, left);
    const Side heardRight = asHeard<Float>(row, right);
    // A running sum of a thousand steps drifts by some 1e-13; in f32 the last rounding may fall to either
    // side.
    const double drift = sizeof(Float) == sizeof(float) ? std::numeric_limits<float>::epsilon() * 4 : 1e-13;
    const double epsilon = row.ramped ? drift : 0;
    for (int i = 0; i < frames * row.dst; ++i) {
        const auto expected = expectedSample<Float>(row, i / row.dst, i % row.dst, heardLeft, heardRight);
        const double scale = row.bits == 32 ? 2 : row.bits == 16 ? 65536 : 16777216;
        ASSERT_NEAR(dest[i], expected, epsilon * scale)
            << name << " sample " << i << " of " << frames << " frames";
    }
    for (std::size_t i = static_cast<std::size_t>(frames) * row.dst; i < dest.size(); ++i) {
        ASSERT_EQ(dest[i], start<Float>(static_cast<int>(i))) << name << " wrote behind its run";
    }
    const bool usesRight = row.src == 2 || row.dst == 2;
    EXPECT_NEAR(args.gainL, static_cast<double>(left.at(frames, row.ramped)), row.ramped ? 1e-12 : 0) << name;
    EXPECT_NEAR(args.gainR, static_cast<double>(right.at(frames, row.ramped && usesRight)),
                row.ramped ? 1e-12 : 0)
        << name;
    EXPECT_EQ(args.stepL, left.step) << name;
    EXPECT_EQ(args.stepR, right.step) << name;
    EXPECT_EQ(args.curveL, left.curve) << name;
    EXPECT_EQ(args.curveR, right.curve) << name;
}

void checkAllKernels(int frames, const Side& left, const Side& right) {
    for (int row = 0; row < 32; ++row) {
        checkKernel<float>(mix32Table[row], kRows[row], frames, left, right,
                           "float row " + std::to_string(row));
        checkKernel<double>(mix64Table[row], kRows[row], frames, left, right,
                            "double row " + std::to_string(row));
    }
    for (int row = 0; row < 4; ++row) {
        checkKernel<float>(mix32Table24[row], kRows24[row], frames, left, right,
                           "float 24 " + std::to_string(row));
        checkKernel<double>(mix64Table24[row], kRows24[row], frames, left, right,
                            "double 24 " + std::to_string(row));
    }
}

TEST(MixKernels, EachOfThe72MovesItsFramesByItsRow) {
    // Gains that fit f32 and gains that don't.
    for (int frames : {1, 2, 3, 7, 8, 15, 16, 17, 31, 33, 64, 100, 1000}) {
        checkAllKernels(frames, {0.7, -0.0003, 0.0000002}, {1.1, 0.0001, -0.0000005});
        checkAllKernels(frames, {0.75f, 0.01, 0}, {0.1f, -0.002, 0});
        checkAllKernels(frames, {1, 0, 0}, {1, 0, 0});
    }
}

TEST(MixKernels, ACountOfNothingWritesNothing) {
    for (int count : {0, -1, -1000, std::numeric_limits<std::int32_t>::min()}) {
        for (const MixKernel kernel :
             {mix32Table[4], mix32Table[14], mix32Table[15], mix32Table[28], mix32Table24[3]}) {
            float dest[4] = {1, 2, 3, 4};
            const float source[4] = {5, 6, 7, 8};
            MixArgs args;
            args.dest = dest;
            args.src = source;
            args.count = count;
            args.gainL = 0.5;
            args.gainR = 0.25;
            args.stepL = args.stepR = args.curveL = args.curveR = 1;
            kernel(&args);
            EXPECT_EQ(dest[0], 1);
            EXPECT_EQ(dest[3], 4);
            EXPECT_EQ(args.gainL, 0.5);
            EXPECT_EQ(args.gainR, 0.25);
        }
    }
}

TEST(MixKernels, ARampWithoutStepsIsTheConstantGainOfAPlainBody) {
    // One sample behind an aligned place no fast form is taken.
    constexpr int kPlain = 1;
    std::vector<float> source(514 + kPlain);
    for (int i = 0; i < 514 + kPlain; ++i) source[i] = static_cast<float>(sampleAt(32, i));
    for (const double gain : {0.3, 1.0, static_cast<double>(0.3f), 1e-40, 1e30}) {
        for (const int row : {4, 6, 14, 20, 22, 30, 28}) {
            std::vector<float> constant(514 + kPlain, 0.25f);
            std::vector<float> ramped(514 + kPlain, 0.25f);
            MixArgs args;
            args.src = source.data() + kPlain;
            args.count = 257;
            args.gainL = gain;
            args.gainR = gain / 3;
            args.dest = constant.data() + kPlain;
            mix32Table[row](&args);
            args.dest = ramped.data() + kPlain;
            mix32Table[row + 1](&args);
            EXPECT_EQ(std::memcmp(constant.data(), ramped.data(), constant.size() * sizeof(float)), 0)
                << row << " " << gain;
        }
    }
}

TEST(MixKernels, AFadeOfOneOverItsLengthEndsOnNothing) {
    constexpr int kLength = 882;
    const std::vector<float> ones(kLength, 1.0f);
    std::vector<float> dest(kLength, 0.0f);
    MixArgs args;
    args.dest = dest.data();
    args.src = ones.data();
    args.count = kLength;
    args.gainL = 1;
    args.stepL = -1.0 / kLength;
    mix32Table[5](&args);
    EXPECT_NEAR(args.gainL, 0, 1e-12);
    EXPECT_EQ(dest[0], 1.0f);
    EXPECT_NEAR(dest[kLength - 1], 1.0 / kLength, 1e-9);
}

TEST(MixKernels, TheGainOfAFrameFollowsTheParabola) {
    constexpr int kFrames = 14700;
    const std::vector<float> ones(kFrames, 1.0f);
    std::vector<double> dest(kFrames, 0.0);
    const std::vector<double> doubles(kFrames, 1.0);
    MixArgs args;
    args.dest = dest.data();
    args.src = doubles.data();
    args.count = kFrames;
    args.gainL = 1;
    args.stepL = -1.0 / (14700.0 * 14700.0);
    args.curveL = -2.0 / (14700.0 * 14700.0);
    mix64Table[5](&args);
    for (int i = 0; i < kFrames; ++i) {
        const double x = i / 14700.0;
        ASSERT_NEAR(dest[i], 1 - x * x, 1e-11) << i;
    }
}

TEST(MixKernels, StereoIntoMonoIsTheSumAtDoubleLevel) {
    const float source[6] = {0.25f, 0.25f, 0.5f, 0.5f, -0.125f, -0.125f};
    for (const int row : {12, 28}) {
        float dest[3] = {0, 0, 0};
        MixArgs args;
        args.dest = dest;
        args.src = source;
        args.count = 3;
        args.gainL = args.gainR = 1;
        mix32Table[row](&args);
        EXPECT_EQ(dest[0], 0.5f);
        EXPECT_EQ(dest[1], 1.0f);
        EXPECT_EQ(dest[2], -0.25f);
    }
}

TEST(MixKernels, StereoIntoMonoSumsBeforeItRounds) {
    // Each product alone would round away; their sum doesn't.
    const float source[2] = {1.0f, 1.0f};
    float dest = 0;
    MixArgs args;
    args.dest = &dest;
    args.src = source;
    args.count = 1;
    args.gainL = 1.0;
    args.gainR = 1.0 / 16777216 + 1.0 / 1073741824;
    mix32Table[28](&args);
    EXPECT_EQ(dest, 1.0f + 1.0f / 8388608);
}

TEST(MixKernels, TheProductIsRoundedBeforeItIsAdded) {
    const float source = 1.0f + 1.0f / 8388608;
    float dest = 1.0f;
    MixArgs args;
    args.dest = &dest;
    args.src = &source;
    args.count = 1;
    args.gainL = 0.1;
    mix32Table[4](&args);
    const auto product = static_cast<float>(static_cast<double>(source) * 0.1);
    EXPECT_EQ(dest, 1.0f + product);
}

TEST(MixKernels, SixteenBitSamplesAreTakenByTheirValue) {
    const std::int16_t source[3] = {-32768, 32767, 5};
    float dest[3] = {};
    MixArgs args;
    args.dest = dest;
    args.src = source;
    args.count = 3;
    args.gainL = 1;
    mix32Table[16](&args);
    EXPECT_EQ(dest[0], -32768.0f);
    EXPECT_EQ(dest[1], 32767.0f);
    EXPECT_EQ(dest[2], 5.0f);
}

TEST(MixKernels, TwentyFourBitSamplesAreThreeBytesWithASign) {
    const unsigned char source[9] = {0x00, 0x00, 0x80, 0xFF, 0xFF, 0x7F, 0xFE, 0xFF, 0xFF};
    double dest[3] = {};
    MixArgs args;
    args.dest = dest;
    args.src = source;
    args.count = 3;
    args.gainL = 1;
    mix64Table24[2](&args);
    EXPECT_EQ(dest[0], -8388608.0);
    EXPECT_EQ(dest[1], 8388607.0);
    EXPECT_EQ(dest[2], -2.0);
}

TEST(MixKernels, ARunMayGoOnInAFurtherCall) {
    const std::vector<float> ones(20, 1.0f);
    std::vector<float> whole(20, 0.0f);
    std::vector<float> pieces(20, 0.0f);
    MixArgs args;
    args.src = ones.data();
    args.gainL = 0.5;
    args.stepL = 0.01;
    args.dest = whole.data();
    args.count = 20;
    MixArgs first = args;
    mix32Table[5](&first);
    args.dest = pieces.data();
    args.count = 9;
    mix32Table[5](&args);
    args.dest = pieces.data() + 9;
    args.count = 11;
    mix32Table[5](&args);
    EXPECT_EQ(whole, pieces);
    EXPECT_EQ(args.gainL, first.gainL);
}

}  // namespace
}  // namespace marnoth::test::mix_kernels_test
