#include <gtest/gtest.h>

#include "platform/text/UriList.h"

namespace marnoth::test::uri_list_test {
namespace {

using Files = std::vector<std::string>;

TEST(UriList, GivesTheFilesOfItsLinesInTheirOrder) {
    EXPECT_EQ(filesOfUriList("file:///b/two.wav\r\nfile:///a/one.wav\r\n", "stage"),
              (Files{"/b/two.wav", "/a/one.wav"}));
}

TEST(UriList, DecodesEscapesToTheBytesThatTheyStandFor) {
    EXPECT_EQ(filesOfUriList("file:///my%20loops/caf%C3%A9%25.wav", ""),
              (Files{"/my loops/caf\xC3\xA9%.wav"}));
}

TEST(UriList, TakesOldFormsWithoutAHostAndLinesThatEndInOneCharacter) {
    EXPECT_EQ(filesOfUriList("file:/a.wav\nfile:///b.wav", ""), (Files{"/a.wav", "/b.wav"}));
}

TEST(UriList, KnowsThisMachineByItsName) {
    EXPECT_EQ(filesOfUriList("file://localhost/a\r\nfile://stage/b\r\nfile://elsewhere/c", "stage"),
              (Files{"/a", "/b"}));
}

TEST(UriList, PassesOverCommentsOtherSchemesAndWhatIsBroken) {
    EXPECT_EQ(filesOfUriList("#file:///a\r\nhttps://x/b.wav\r\n\r\nfile:relative\r\nfile:///c%2\r\n"
                             "file:///d%zz\r\nfile:///e%00.wav\r\nfile://\r\n",
                             ""),
              Files{});
    EXPECT_EQ(filesOfUriList(std::string("file:///a\0b", 11), ""), Files{});
    EXPECT_EQ(filesOfUriList("", ""), Files{});
}

}  // namespace
}  // namespace marnoth::test::uri_list_test
