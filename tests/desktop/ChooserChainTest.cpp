#include <gtest/gtest.h>

#include "editor/TestPage.h"
#include "editor/texts/PageTexts.h"
#include "shellkit/TempFolder.h"
#include "shells/desktop/dialogs/DesktopDialogs.h"
#include "shells/desktop/projects/FileMenu.h"
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
    const TempFolder folder;
    std::filesystem::create_directory(folder / "songs");
    first.inAdvance = FileAnswer{.wasAsked = true, .file = folder.name("songs/a.mrn")};
    ask();
    EXPECT_EQ(first.question.folder, "");
    ask();
    EXPECT_EQ(first.question.folder, folder.name("songs"));
    ASSERT_EQ(chain.places().size(), 1u);
    EXPECT_EQ(chain.places()[0].name, "songs");
    chain.ask({"Wave Files (*.wav)|*.wav||", FileKind::open, {}}, window, [](const FileAnswer&) {});
    EXPECT_EQ(first.question.folder, "");
    std::filesystem::remove(folder / "songs");
    ask();
    EXPECT_EQ(first.question.folder, "") << "it has gone";
    EXPECT_TRUE(chain.places().empty());
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

class NoEars final : public FileListener {
public:
    std::string play(const std::string&) override { return {}; }
    void stop() override {}
    bool isPlaying() const override { return false; }
};

TEST(DesktopDialogs, FoldersAreKeptForTheNextStartAndOneForAllThatAsksForProjects) {
    EventLoop loop;
    FixedFont font;
    NoEars ears;
    DesktopDialogs dialogs(loop, font, ears, "");
    std::map<std::string, std::string>& folders = dialogs.chooser().folders;
    DesktopSettings settings;
    dialogs.beginWhereKept(settings);
    dialogs.keepFolders(settings);
    EXPECT_EQ(settings, DesktopSettings());
    settings.loopFolder = "/loops";
    settings.projectFolder = "/songs";
    dialogs.beginWhereKept(settings);
    EXPECT_EQ(folders[kWaveFilter], "/loops");
    EXPECT_EQ(folders[kFilesFilter], "/songs");
    for (const char* const filter : {kProjectFilter, kFilesFilter}) {
        folders[filter] = std::string("/") + filter[0];
        dialogs.keepFolders(settings);
        EXPECT_EQ(settings.projectFolder, folders[filter]);
        EXPECT_EQ(folders[kProjectFilter], folders[kFilesFilter]);
    }
    EXPECT_EQ(settings.loopFolder, "/loops");
}

}  // namespace
}  // namespace marnoth::test::chooser_chain_test
