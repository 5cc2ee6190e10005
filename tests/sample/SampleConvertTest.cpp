#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "sample/SampleConvert.h"

namespace marnoth::test::sample_convert_test {
namespace {

std::vector<std::byte> packed(const std::vector<std::int32_t>& values, int width) {
    std::vector<std::byte> bytes;
    for (const std::int32_t value : values) {
        for (int i = 0; i < width; ++i) bytes.push_back(static_cast<std::byte>(value >> (8 * i)));
    }
    return bytes;
}

TEST(SampleConvert, SixteenBitsHaveTheirFullScale) {
    const auto source = packed({-32768, 32767, 0, 1, -1}, 2);
    std::vector<float> dest(5);
    convert16(dest.data(), source.data(), 5, kScale16);
    EXPECT_EQ(dest,
              (std::vector<float>{-1.0f, 0.999969482421875f, 0.0f, 3.0517578125e-5f, -3.0517578125e-5f}));
}

TEST(SampleConvert, TwentyFourBitsHaveTheirFullScale) {
    const auto source = packed({-8388608, 8388607, 0, 1, -1, 0x123456}, 3);
    std::vector<float> dest(6);
    convert24(dest.data(), source.data(), 6, kScale24);
    EXPECT_EQ(dest, (std::vector<float>{-1.0f, 0.99999988079071044921875f, 0.0f, 1.1920928955078125e-7f,
                                        -1.1920928955078125e-7f, 0x123456 / 8388608.0f}));
}

TEST(SampleConvert, ScaleIsTakenInDoubleAndRoundedOnce) {
    std::vector<std::int32_t> values;
    for (int i = -1000; i < 1000; ++i) values.push_back(i * 32 + 7);
    const double scale = 1.0 / 3.0;
    std::vector<float> dest(values.size());
    convert16(dest.data(), packed(values, 2).data(), std::ssize(values), scale);
    for (std::size_t i = 0; i < values.size(); ++i) {
        ASSERT_EQ(dest[i], static_cast<float>(static_cast<double>(values[i]) * scale)) << i;
    }
    convert24(dest.data(), packed(values, 3).data(), std::ssize(values), scale);
    for (std::size_t i = 0; i < values.size(); ++i) {
        ASSERT_EQ(dest[i], static_cast<float>(static_cast<double>(values[i]) * scale)) << i;
    }
}

TEST(SampleConvert, ValuesGrowInPlace) {
    std::vector<std::int32_t> values;
    for (int i = 0; i < 999; ++i) values.push_back(i * 61 - 30000);
    for (const int width : {2, 3}) {
        std::vector<float> block(values.size());
        const auto source = packed(values, width);
        std::memcpy(block.data(), source.data(), source.size());
        const auto* inside = reinterpret_cast<const std::byte*>(block.data());
        width == 2 ? convert16(block.data(), inside, 999, 1.0) : convert24(block.data(), inside, 999, 1.0);
        for (std::size_t i = 0; i < values.size(); ++i)
            ASSERT_EQ(block[i], static_cast<float>(values[i])) << i;
    }
}

TEST(SampleConvert, NothingIsTouchedForNoValues) {
    float untouched = 5;
    convert16(&untouched, nullptr, 0, 1);
    convert24(&untouched, nullptr, 0, 1);
    EXPECT_EQ(untouched, 5);
}

}  // namespace
}  // namespace marnoth::test::sample_convert_test
