#include <gtest/gtest.h>

#include "shells/lv2/page/ViewText.h"

namespace marnoth::test::view_text_test {
namespace {

/// A page in which nothing is as in a new one.
LeftPage used() {
    LeftPage left;
    left.view = {.currentPad = 3,
                 .currentBinFile = 1,
                 .selection = {{2, 7}, {0, 1}},
                 .binSelection = {{1, 4}},
                 .pixelsPerBeat = 54.0 * 0.6666666666666666,
                 .rowHeight = 25,
                 .snapIndex = 2,
                 .editorPosition = {120, 35},
                 .binPosition = {8, 45},
                 .showsKeyMap = true};
    left.folders = {{"Wave Files (*.wav)|*.wav||", "/home/J\u00FCrg/loops and more"},
                    {"Projects|*.mrn||", "/"}};
    return left;
}

TEST(ViewText, TellsAllOfAView) {
    EXPECT_EQ(leftPageIn(textOf(used())), used());
    EXPECT_EQ(leftPageIn(textOf({})), LeftPage{});
    EXPECT_EQ(leftPageIn(""), LeftPage{});
}

TEST(ViewText, ThatSaysSomethingElseIsPassedOver) {
    const LeftPage read = leftPageIn(
        "pad\npad x\npad 99999999999\nzoom wide 15\nsnap 3 4\n\n \nfolder\nfolder a\t\ngrains 1 2 3\nfile "
        "2\r\nlater 7");
    LeftPage expected;
    expected.view.snapIndex = 3;
    expected.view.selection = {{1, 2}};
    EXPECT_EQ(read, expected);
}

TEST(ViewText, LeavesOutWhatIsTooLongOrNoLine) {
    LeftPage left;
    for (int grain = 0; grain <= static_cast<int>(kMostKeptGrains); ++grain)
        left.view.selection.push_back({0, grain});
    left.folders = {{"a", "/two\nlines"}, {"b", "/tab\there"}, {"c", ""}};
    EXPECT_EQ(leftPageIn(textOf(left)), LeftPage{});
}

}  // namespace
}  // namespace marnoth::test::view_text_test
