#include <gtest/gtest.h>

#include "editor/TestPage.h"
#include "platform/drawing/RecordingSurface.h"
#include "shellkit/page/QuestionBox.h"

namespace marnoth::test::question_box_test {
namespace {

constexpr Rect kPage{0, 0, 600, 553};
constexpr int kTab = 9;

/// A question in a face whose characters are six pixels wide and twelve high.
class QuestionBoxTest : public testing::Test {
protected:
    void ask() { box.open(shownMessage("Sure?", MessageKind::yesNo), kPage); }
    void openMenu() {
        box.open({{}, {}, {{7, "Load", false}, {8, "Looping", true}, {9, "Clear", false}}, {20, 30}}, kPage);
    }
    Point choice(const ShownQuestion& question, std::size_t at) {
        const Rect place = layOut(question, font, kPage).choices.at(at);
        return {place.left + place.width() / 2, place.top + place.height() / 2};
    }
    Point button(std::size_t at) { return choice(shownMessage("Sure?", MessageKind::yesNo), at); }
    /// The menu lies at (20, 30), with a border of 3 and rows of 16.
    static Point row(int at) { return {40, 30 + 3 + 16 * at + 8}; }

    FixedFont font;
    QuestionBox box{font};
};

TEST_F(QuestionBoxTest, AButtonIsTakenByPressingAndReleasingOnIt) {
    ask();
    EXPECT_EQ(box.leftDown(button(1)), std::nullopt);
    EXPECT_EQ(box.leftUp(button(1)), 1);
}

TEST_F(QuestionBoxTest, WhoSlidesOffAButtonHasTakenNone) {
    ask();
    box.leftDown(button(1));
    EXPECT_EQ(box.leftUp(button(0)), std::nullopt);
    EXPECT_EQ(box.leftUp(button(0)), std::nullopt) << "which wasn't pressed";
}

TEST_F(QuestionBoxTest, APressBesideAMessageAnswersNothing) {
    ask();
    EXPECT_EQ(box.leftDown({1, 1}), std::nullopt);
    EXPECT_EQ(box.leftUp({1, 1}), std::nullopt);
    EXPECT_TRUE(box.isOpen());
}

TEST_F(QuestionBoxTest, ReturnTakesTheFirstButtonAndTabTheNext) {
    ask();
    EXPECT_EQ(box.keyDown(kKeyReturn, {}), 0);
    EXPECT_EQ(box.keyDown(kTab, {}), std::nullopt);
    EXPECT_EQ(box.keyDown(kKeySpace, {}), 1);
    box.keyDown(kTab, {});
    EXPECT_EQ(box.keyDown(kKeyReturn, {}), 0) << "round";
    box.keyDown(kTab, {.shift = true});
    EXPECT_EQ(box.keyDown(kKeyReturn, {}), 1);
    box.keyDown(kKeyLeft, {});
    EXPECT_EQ(box.keyDown(kKeyReturn, {}), 0);
}

TEST_F(QuestionBoxTest, ALetterTakesItsButtonAndEscapeCancels) {
    ask();
    EXPECT_EQ(box.keyDown('N', {}), 1);
    EXPECT_EQ(box.keyDown('Y', {}), 0);
    EXPECT_EQ(box.keyDown('Q', {}), std::nullopt);
    EXPECT_EQ(box.keyDown(kKeyEscape, {}), QuestionView::kCancelled);
}

TEST_F(QuestionBoxTest, AMenusEntryIsTakenByAClickOrByKeys) {
    openMenu();
    box.leftDown(row(2));
    EXPECT_EQ(box.leftUp(row(2)), 9);
    openMenu();
    EXPECT_EQ(box.keyDown(kKeyReturn, {}), std::nullopt) << "none is lit";
    box.keyDown(kKeyDown, {});
    EXPECT_EQ(box.keyDown(kKeyReturn, {}), 7);
    box.keyDown(kKeyDown, {});
    EXPECT_EQ(box.keyDown(kKeyReturn, {}), 8);
}

TEST_F(QuestionBoxTest, UpFromNoEntryLightsTheLast) {
    openMenu();
    box.keyDown(kKeyUp, {});
    EXPECT_EQ(box.keyDown(kKeyReturn, {}), 9);
}

TEST_F(QuestionBoxTest, ThePressThatOpenedAMenuMayEndOnAnEntry) {
    openMenu();
    EXPECT_EQ(box.leftUp(row(0)), std::nullopt) << "where it was opened nothing is meant yet";
    openMenu();
    box.mouseMove(row(1));
    EXPECT_EQ(box.leftUp(row(1)), 8);
}

TEST_F(QuestionBoxTest, APressOutsideAMenuCancelsIt) {
    openMenu();
    EXPECT_EQ(box.leftDown({300, 300}), QuestionView::kCancelled);
}

TEST_F(QuestionBoxTest, TheLitEntryStandsOnAnotherGround) {
    openMenu();
    const auto grounds = [this] {
        RecordingSurface surface;
        box.paint(surface);
        std::vector<std::string> found;
        for (const std::string& call : surface.calls())
            if (call.starts_with("Rectangle ")) found.push_back(call);
        return found.size();
    };
    EXPECT_EQ(grounds(), 2u) << "shadow and plate";
    box.mouseMove(row(1));
    EXPECT_EQ(grounds(), 3u);
    box.mouseMove({300, 300});
    EXPECT_EQ(grounds(), 2u);
}

TEST_F(QuestionBoxTest, CoversItsBoxAndShadowWhileItIsOpen) {
    openMenu();
    // The longest text is 7 of 6 pixels, with 18 beside it and a border of 3 on both sides.
    EXPECT_EQ(box.place(), (Rect{19, 29, 20 + 42 + 36 + 6 + 3, 30 + 48 + 6 + 3}));
    box.close();
    EXPECT_FALSE(box.isOpen());
    EXPECT_TRUE(box.place().isEmpty());
}

}  // namespace
}  // namespace marnoth::test::question_box_test
