#include <gtest/gtest.h>

#include <limits>

#include "shellkit/script/ScriptNumbers.h"

namespace marnoth::test::script_numbers_test {
namespace {

TEST(ScriptNumbers, ReadDecimalAndHexadecimalIntegers) {
    EXPECT_EQ(readNumber<std::int32_t>("-5", "N"), -5);
    EXPECT_EQ(readNumber<std::uint8_t>("0x90", "N"), 144);
    EXPECT_EQ(readNumber<std::int32_t>("-0x10", "N"), -16);
    EXPECT_EQ(readNumber<std::uint32_t>("0xFFFFFFFF", "N"), 4294967295u);
    EXPECT_EQ(readNumber<std::int64_t>("-9223372036854775808", "N"),
              std::numeric_limits<std::int64_t>::min());
}

TEST(ScriptNumbers, RefuseWhatTheTypeCannotHold) {
    EXPECT_THROW(readNumber<std::uint8_t>("256", "N"), ScriptError);
    EXPECT_THROW(readNumber<std::uint8_t>("-129", "N"), ScriptError);
    EXPECT_THROW(readNumber<std::uint32_t>("-2147483649", "N"), ScriptError);
    EXPECT_THROW(readNumber<std::int32_t>("4294967296", "N"), ScriptError);
    EXPECT_THROW(readNumber<std::int64_t>("9223372036854775808", "N"), ScriptError);
    EXPECT_THROW(readNumber<std::int64_t>("99999999999999999999999", "N"), ScriptError);
    EXPECT_THROW(readFloat("1e39", "N"), ScriptError);
}

TEST(ScriptNumbers, ReadTheBitsOfATypeAsSignedOrUnsigned) {
    EXPECT_EQ(readNumber<std::uint8_t>("-10", "N"), 0xF6);
    EXPECT_EQ(readNumber<std::uint32_t>("-1", "N"), 0xFFFFFFFFu);
    EXPECT_EQ(readNumber<std::int32_t>("0xFFFFFFFF", "N"), -1);
    EXPECT_EQ(readNumber<std::int32_t>("2147483648", "N"), std::numeric_limits<std::int32_t>::min());
}

TEST(ScriptNumbers, RefuseWhatIsNoNumber) {
    for (const char* word : {"", "-", "0x", "1.5", "5x", "--5", "+5", " 5", "0x-5"})
        EXPECT_THROW(readNumber<std::int32_t>(word, "N"), ScriptError) << word;
    for (const char* word : {"", "1,5", "inf", "nan", "0x10", "1.5.2", "+1"})
        EXPECT_THROW(readReal(word, "N"), ScriptError) << word;
}

TEST(ScriptNumbers, SayWhichArgumentIsWrong) {
    try {
        readNumber<std::uint8_t>("999", "VELOCITY");
        FAIL();
    } catch (const ScriptError& error) {
        EXPECT_STREQ(error.what(), "VELOCITY: \"999\" isn't within -128 to 255");
    }
}

TEST(ScriptNumbers, PrintRealsWithNineDigits) {
    EXPECT_EQ(printReal(0.333f), "0.333000004");
    EXPECT_EQ(printReal(2), "2");
    EXPECT_EQ(printReal(-0.5), "-0.5");
    EXPECT_EQ(printReal(1e-7), "1e-07");
    EXPECT_EQ(printReal(1.5e10), "1.5e+10");
}

TEST(ScriptNumbers, PrintResultsWithEightDigits) {
    EXPECT_EQ(printResult(S_OK), "00000000");
    EXPECT_EQ(printResult(S_FALSE), "00000001");
    EXPECT_EQ(printResult(E_INVALIDARG), "80070057");
}

}  // namespace
}  // namespace marnoth::test::script_numbers_test
