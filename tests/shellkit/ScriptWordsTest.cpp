#include <gtest/gtest.h>

#include "shellkit/script/ScriptWords.h"

namespace marnoth::test::script_words_test {
namespace {

using Words = std::vector<std::string>;

TEST(ScriptWords, AreSeparatedByBlanksAndEndAtAComment) {
    EXPECT_EQ(splitWords("  SetPadMute\t0   1  # quiet now"), (Words{"SetPadMute", "0", "1"}));
    EXPECT_EQ(splitWords("render 5#frames"), (Words{"render", "5"}));
    EXPECT_EQ(splitWords("# nothing"), Words{});
    EXPECT_EQ(splitWords(""), Words{});
}

TEST(ScriptWords, InQuotesHoldBlanksCommentSignsAndEscapes) {
    EXPECT_EQ(splitWords(R"(a "b c" "#d" "e\"f\\g" "")"), (Words{"a", "b c", "#d", "e\"f\\g", ""}));
}

TEST(ScriptWords, KeepABackslashThatEscapesNothing) {
    EXPECT_EQ(splitWords(R"(C:\loops\a.wav "C:\my loops\a.wav")"),
              (Words{R"(C:\loops\a.wav)", R"(C:\my loops\a.wav)"}));
}

TEST(ScriptWords, RefuseWhatIsNoText) {
    EXPECT_THROW(splitWords("a \"b"), ScriptError);
    EXPECT_THROW(splitWords("a \"b\\\""), ScriptError);
    EXPECT_THROW(splitWords("a b\"c\""), ScriptError);
    EXPECT_THROW(splitWords("\"a\"b"), ScriptError);
    EXPECT_THROW(splitWords(std::string_view("a\0b", 3)), ScriptError);
    EXPECT_THROW(splitWords("a \xC3"), ScriptError);
}

TEST(ScriptWords, AreShownInQuotesOnlyWhereTheyHoldABlank) {
    EXPECT_EQ(joinWords(splitWords(R"(LoadFileToPad  0 "drums"   "my \"best\" loop.wav")")),
              R"(LoadFileToPad 0 drums "my \"best\" loop.wav")");
}

TEST(ScriptWords, StandALineOfAMegabyte) {
    const std::string word(1 << 20, 'x');
    EXPECT_EQ(splitWords(word + " " + word), (Words{word, word}));
}

}  // namespace
}  // namespace marnoth::test::script_words_test
