#include <gtest/gtest.h>

#include <algorithm>

#include "editor/TestPage.h"
#include "platform/drawing/RecordingSurface.h"
#include "shellkit/page/QuestionPicture.h"

namespace marnoth::test::question_picture_test {
namespace {

constexpr Rect kPage{0, 0, 600, 553};

using Lines = std::vector<std::string>;

/// Draws a question in a face whose characters are six pixels wide and twelve high.
class QuestionPicture : public testing::Test {
protected:
    void draw(const ShownQuestion& question) {
        drawQuestion(surface, question, layOut(question, font, kPage), font);
    }
    /// The calls of a name.
    Lines calls(const std::string& name) const {
        Lines found;
        std::ranges::copy_if(surface.calls(), std::back_inserter(found),
                             [&](const std::string& call) { return call.starts_with(name + " "); });
        return found;
    }
    /// The texts that were drawn, in double quotes.
    Lines texts() const {
        Lines found;
        for (const std::string& call : calls("TextOut")) found.push_back(call.substr(call.find('"')));
        return found;
    }

    FixedFont font;
    RecordingSurface surface;
};

TEST_F(QuestionPicture, AMessageStandsInTheMiddleWithItsButtons) {
    draw({"Sure?", {"Yes", "No"}, {}, {}});
    EXPECT_EQ(texts(), (Lines{"\"Sure?\"", "\"Yes\"", "\"No\""}));
    // 330 and two times 16 wide; a line, a button of 20 and three times 16 high.
    EXPECT_EQ(calls("Rectangle").back(), "Rectangle 119,236,481,316");
    EXPECT_EQ(calls("RoundRect").size(), 2u);
}

TEST_F(QuestionPicture, ALongMessageIsWrappedBetweenWords) {
    // 55 characters of 6 pixels fit into 330.
    const std::string fits = std::string(27, 'a') + " " + std::string(27, 'b');
    draw({fits + " c " + fits + "d", {"OK"}, {}, {}});
    EXPECT_EQ(texts(), (Lines{"\"" + fits + "\"", "\"c " + std::string(27, 'a') + "\"",
                              "\"" + std::string(27, 'b') + "d\"", "\"OK\""}));
}

TEST_F(QuestionPicture, AMenuLiesWhereItIsWantedWithATickAtWhatIsOn) {
    draw({{}, {}, {{1, "Open Audio File", false}, {2, "Looping", true}, {3, "Synced", true}}, {20, 30}});
    EXPECT_EQ(texts(), (Lines{"\"Open Audio File\"", "\"Looping\"", "\"Synced\""}));
    // The longest text and 2 times 18 and 3 wide; three rows of 16 and 2 times 3 high.
    EXPECT_EQ(calls("Rectangle").back(), "Rectangle 20,30,152,84");
    // A tick is two strokes side by side.
    EXPECT_EQ(calls("MoveTo").size(), 4u);
}

TEST_F(QuestionPicture, AMenuAtTheEdgeStaysOnThePage) {
    draw({{}, {}, {{1, "One", false}}, {599, 552}});
    EXPECT_EQ(calls("Rectangle").back(), "Rectangle 540,531,600,553");
}

}  // namespace
}  // namespace marnoth::test::question_picture_test
