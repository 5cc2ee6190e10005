#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

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

std::int32_t unpacked(const std::byte* bytes, int width) {
    std::uint32_t value = 0;
    for (int i = 0; i < width; ++i)
        value |= std::to_integer<std::uint32_t>(bytes[i]) << (32 - 8 * (width - i));
    return static_cast<std::int32_t>(value) >> (32 - 8 * width);
}

TEST(SampleConvert, AnyNumberOfValuesAtAnyPlaceIsTheValueTimesTheScaleRoundedOnce) {
    std::mt19937 random(50);
    std::vector<std::byte> bytes(700);
    for (std::byte& byte : bytes) byte = static_cast<std::byte>(random());
    const double scales[] = {kScale16, kScale24, 1.0, -0.5, 0.3, 0x1p-120, 0x1p90, 0.0};
    for (int turn = 0; turn < 4000; ++turn) {
        const int width = 2 + turn % 2;
        const double scale = scales[random() % std::size(scales)];
        const auto count = static_cast<std::int64_t>(random() % 200);
        const std::byte* const source = bytes.data() + random() % 16;
        std::vector<float> dest(static_cast<std::size_t>(count) + 1, 42.0f);
        (width == 2 ? convert16 : convert24)(dest.data(), source, count, scale);
        for (std::int64_t i = 0; i < count; ++i) {
            const auto value = static_cast<float>(unpacked(source + i * width, width) * scale);
            ASSERT_EQ(std::bit_cast<std::uint32_t>(dest[static_cast<std::size_t>(i)]),
                      std::bit_cast<std::uint32_t>(value))
                << i << " of " << count << ", scale " << scale;
        }
        ASSERT_EQ(dest.back(), 42.0f);
    }
}

}  // namespace
}  // namespace marnoth::test::sample_convert_test
