#include <gtest/gtest.h>

#include "shellkit/TempFolder.h"
#include "shellkit/page/ChooserChain.h"
#include "support/PlainAskingWindow.h"

namespace marnoth::test::chooser_chain_test {
namespace {

constexpr const char* kFilter = "Mrn Files (*.mrn)|*.mrn||";

/// A dialog that is answered by the test, or within the call when it has an answer in advance.
class StandIn final : public FileChooser {
public:
    void ask(const FileQuestion& asked, AskingWindow&, std::function<void(FileAnswer)> then) override {
        ++asks;
        question = asked;
        if (inAdvance) return then(*inAdvance);
        answer = std::move(then);
    }
    void cancel() override { ++cancels; }

    int asks = 0;
    int cancels = 0;
    FileQuestion question;
    std::optional<FileAnswer> inAdvance;
    std::function<void(FileAnswer)> answer;
};

class ChooserChainTest : public testing::Test {
protected:
    void ask(FileKind kind = FileKind::open) {
        chain.ask({kFilter, kind, {}}, window, [this](const FileAnswer& given) { answers.push_back(given); });
    }

    StandIn first;
    StandIn second;
    ChooserChain chain{{&first, &second}};
    PlainAskingWindow window;
    std::vector<FileAnswer> answers;
};

TEST_F(ChooserChainTest, TheFirstThatComesUpHasTheAnswer) {
    ask();
    EXPECT_EQ(second.asks, 0);
    first.answer({.wasAsked = true, .file = "/a/b.mrn"});
    ASSERT_EQ(answers.size(), 1u);
    EXPECT_EQ(answers[0].file, "/a/b.mrn");
}

TEST_F(ChooserChainTest, ACancelledOneIsntAskedAgainByTheNext) {
    ask();
    first.answer({});
    ASSERT_EQ(answers.size(), 1u);
    EXPECT_EQ(answers[0].file, std::nullopt);
    EXPECT_EQ(second.asks, 0);
}

TEST_F(ChooserChainTest, OneThatFailsIsFollowedByTheNextAndNotTriedAgain) {
    first.inAdvance = FileAnswer{.wasAsked = false, .file = {}};
    second.inAdvance = FileAnswer{.wasAsked = true, .file = "/c.mrn"};
    ask();
    ask();
    EXPECT_EQ(first.asks, 1);
    EXPECT_EQ(second.asks, 2);
    ASSERT_EQ(answers.size(), 2u);
    EXPECT_EQ(answers[1].file, "/c.mrn");
}

TEST_F(ChooserChainTest, WhenAllFailItIsSaidOnce) {
    first.inAdvance = second.inAdvance = FileAnswer{.wasAsked = false, .file = {}};
    ask();
    ASSERT_EQ(answers.size(), 1u);
    EXPECT_FALSE(answers[0].wasAsked);
}

TEST_F(ChooserChainTest, ADialogBeginsWhereTheLastFileOfItsFilterWas) {
    first.inAdvance = FileAnswer{.wasAsked = true, .file = "/songs/a.mrn"};
    ask();
    EXPECT_EQ(first.question.folder, "");
    ask();
    EXPECT_EQ(first.question.folder, "/songs");
    chain.ask({"Wave Files (*.wav)|*.wav||", FileKind::open, {}}, window, [](const FileAnswer&) {});
    EXPECT_EQ(first.question.folder, "");
}

TEST_F(ChooserChainTest, ANewFileGetsItsExtensionUnlessThatWouldReplaceAnother) {
    const TempFolder folder;
    first.inAdvance = FileAnswer{.wasAsked = true, .file = folder.name("new")};
    ask(FileKind::save);
    EXPECT_EQ(answers.back().file, folder.name("new.mrn"));
    writeText(folder / "new.mrn", "another");
    ask(FileKind::save);
    EXPECT_EQ(answers.back().file, folder.name("new"));
    ask(FileKind::open);
    EXPECT_EQ(answers.back().file, folder.name("new"));
    first.inAdvance->file = folder.name("LOUD.MRN");
    ask(FileKind::save);
    EXPECT_EQ(answers.back().file, folder.name("LOUD.MRN"));
}

TEST_F(ChooserChainTest, TakingItBackReachesTheOneThatAsks) {
    first.inAdvance = FileAnswer{.wasAsked = false, .file = {}};
    ask();
    chain.cancel();
    EXPECT_EQ(second.cancels, 1);
    EXPECT_TRUE(answers.empty());
}

}  // namespace
}  // namespace marnoth::test::chooser_chain_test
