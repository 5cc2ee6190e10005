#include <gtest/gtest.h>

#include "shellkit/text/Nearest.h"

namespace marnoth::test::nearest_test {
namespace {

const std::vector<std::string> kWords{"render", "info", "--tempo", "--rate", "volume"};

TEST(Nearest, FindsAWordWithALetterMissingTooManyOtherOrSwapped) {
    for (const char* word : {"rendr", "rrender", "tender", "redner", "Render"})
        EXPECT_EQ(nearestWord(word, kWords), "render") << word;
    EXPECT_EQ(nearestWord("--tmpo", kWords), "--tempo");
    EXPECT_EQ(nearestWord("vloume", kWords), "volume");
}

TEST(Nearest, FindsAWordByItsBeginning) {
    EXPECT_EQ(nearestWord("vol", kWords), "volume");
}

TEST(Nearest, FindsNothingWhereNothingIsNear) {
    for (const char* word : {"", "x", "banana", "--help"}) EXPECT_EQ(nearestWord(word, kWords), "") << word;
    EXPECT_EQ(nearestWord(std::string(1'000'000, 'r'), kWords), "");
    EXPECT_EQ(nearestHint("banana", kWords), "");
    EXPECT_EQ(nearestHint("inof", kWords), " (did you mean info?)");
}

}  // namespace
}  // namespace marnoth::test::nearest_test
