#include <gtest/gtest.h>

#include <set>

#include "dsp/MixKernels.h"

namespace marnoth::test::mix_selection_test {
namespace {

TEST(MixSelection, StereoFloatAddRampedIsRow15) {
    EXPECT_EQ(GetMixKernel(32, 2, 2, 0, 1, 0), mix32Table[15]);
}

TEST(MixSelection, StereoToMonoConstantAsksForRow12WhichIsTheRampedKernel) {
    EXPECT_EQ(GetMixKernel(32, 2, 1, 0, 0, 0), mix32Table[12]);
    EXPECT_EQ(mix32Table[12], mix32Table[13]);
    EXPECT_EQ(mix64Table[12], mix64Table[13]);
}

TEST(MixSelection, MonoFloatIntoStereoIsRow6) {
    EXPECT_EQ(GetMixKernel(32, 1, 2, 0, 0, 0), mix32Table[6]);
}

TEST(MixSelection, StereoSixteenBitReplaceRampedIsRow27) {
    EXPECT_EQ(GetMixKernel(16, 2, 2, 1, 1, 0), mix32Table[27]);
}

TEST(MixSelection, TwentyFourBitsAreMonoWhateverTheChannels) {
    for (std::uint32_t channels : {0u, 1u, 2u, 6u}) {
        EXPECT_EQ(GetMixKernel(24, channels, 2, 0, 1, 0), mix32Table24[1]);
        EXPECT_EQ(GetMixKernel(24, 2, channels, 1, 0, 0), mix32Table24[2]);
        EXPECT_EQ(GetMixKernel(24, 2, channels, 1, 1, 64), mix64Table24[3]);
        EXPECT_EQ(GetMixKernel(24, 2, channels, 0, 0, 64), mix64Table24[0]);
    }
}

TEST(MixSelection, AnUnknownMixPathIsTheDefault) {
    EXPECT_EQ(defaultMixBits, 32);
    for (std::uint32_t path : {1u, 16u, 33u, 0xFFFFFFFFu}) {
        EXPECT_EQ(GetMixKernel(32, 2, 2, 0, 1, path), GetMixKernel(32, 2, 2, 0, 1, 0));
    }
}

TEST(MixSelection, TheDoublePathKnowsNoFloatSource) {
    EXPECT_EQ(GetMixKernel(32, 2, 2, 0, 1, 64), mix64Table[11]);
    EXPECT_EQ(GetMixKernel(64, 2, 2, 0, 1, 64), mix64Table[15]);
}

TEST(MixSelection, TheFloatPathTakesEveryOtherDepthFor16Bits) {
    for (std::uint32_t bits : {0u, 8u, 16u, 20u, 64u, 0xFFFFFFFFu}) {
        EXPECT_EQ(GetMixKernel(bits, 1, 1, 0, 0, 32), mix32Table[0]);
        EXPECT_EQ(GetMixKernel(bits, 2, 2, 7, 9, 32), mix32Table[27]);
    }
}

TEST(MixSelection, OnlyTwoChannelsAreStereo) {
    for (std::uint32_t channels : {0u, 1u, 3u, 0xFFFFFFFFu}) {
        EXPECT_EQ(GetMixKernel(32, channels, channels, 0, 0, 0), mix32Table[4]);
        EXPECT_EQ(GetMixKernel(32, 2, channels, 0, 1, 0), mix32Table[13]);
    }
}

TEST(MixSelection, EveryRowIsReachedByItsArguments) {
    for (std::uint32_t row = 0; row < 32; ++row) {
        const std::uint32_t src = (row & 8) ? 2 : 1;
        const std::uint32_t dst = (row & 2) ? 2 : 1;
        EXPECT_EQ(GetMixKernel((row & 4) ? 32 : 16, src, dst, row & 16, row & 1, 32), mix32Table[row]) << row;
        EXPECT_EQ(GetMixKernel((row & 4) ? 64 : 16, src, dst, row & 16, row & 1, 64), mix64Table[row]) << row;
    }
}

TEST(MixSelection, OnlyTheTwoSharedRowsShareAKernel) {
    for (const auto& table : {mix32Table, mix64Table}) {
        const std::set<MixKernel> kernels(table, table + 32);
        EXPECT_EQ(kernels.size(), 30u);
        EXPECT_EQ(table[24], table[25]);
        EXPECT_NE(table[28], table[29]);
    }
}

}  // namespace
}  // namespace marnoth::test::mix_selection_test
