#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <optional>

#include "shellkit/TempFolder.h"
#include "shells/desktop/dialogs/ProgramChooser.h"
#include "support/PlainAskingWindow.h"

namespace marnoth::test::program_chooser_test {
namespace {

using File = std::optional<std::string>;

/// A stand-in for zenity, and a user who waits for its answer.
class ProgramChooserTest : public testing::Test {
protected:
    /// A program that does what `script` says.
    std::string zenity(const std::string& script) {
        writeText(folder_ / "zenity", "#!/bin/sh\n" + script + "\n");
        std::filesystem::permissions(folder_ / "zenity", std::filesystem::perms::owner_all);
        return folder_.name("zenity");
    }
    /// What `program` answers.
    FileAnswer ask(const std::string& program) {
        ProgramChooser chooser(loop, program);
        std::optional<FileAnswer> answer;
        chooser.ask({"Wave Files (*.wav)|*.wav||", FileKind::open, {}}, window,
                    [&](const FileAnswer& given) { answer = given; });
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!answer && std::chrono::steady_clock::now() < end) loop.wait(end);
        EXPECT_TRUE(answer) << "no answer came";
        return answer.value_or(FileAnswer{});
    }

    EventLoop loop;
    PlainAskingWindow window;

private:
    TempFolder folder_;
};

TEST_F(ProgramChooserTest, GivesTheFileThatWasChosen) {
    EXPECT_EQ(ask(zenity("echo '/music/my loop.wav'")).file, File("/music/my loop.wav"));
}

TEST_F(ProgramChooserTest, WaitsForAnAnswerThatComesLate) {
    EXPECT_EQ(ask(zenity("sleep 0.3; echo /a.wav")).file, File("/a.wav"));
}

TEST_F(ProgramChooserTest, ADialogThatIsClosedChoosesNothing) {
    const FileAnswer answer = ask(zenity("sleep 0.4; exit 1"));
    EXPECT_TRUE(answer.wasAsked);
    EXPECT_EQ(answer.file, File());
}

TEST_F(ProgramChooserTest, OneThatEndsBeforeAUserCanHasntAsked) {
    EXPECT_FALSE(ask(zenity("exit 1")).wasAsked);
}

TEST_F(ProgramChooserTest, OneThatFailsHasntAsked) {
    EXPECT_FALSE(ask(zenity("sleep 0.4; exit 255")).wasAsked);
    EXPECT_FALSE(ask(zenity("sleep 0.4; kill -9 $$")).wasAsked);
}

TEST_F(ProgramChooserTest, WhatIsNoFullPathIsNoFile) {
    EXPECT_EQ(ask(zenity("echo relative.wav")).file, File());
}

TEST_F(ProgramChooserTest, AnAnswerWithoutEndIsNoFile) {
    EXPECT_EQ(ask(zenity("head -c 200000 /dev/zero | tr '\\0' '/'")).file, File());
}

TEST_F(ProgramChooserTest, OneThatClosesItsEndAndStaysHoldsNobodyUp) {
    ProgramChooser chooser(loop, zenity("exec >&-; exec sleep 100"));
    bool answered = false;
    chooser.ask({"A|*.a||", FileKind::open, {}}, window, [&](const FileAnswer&) { answered = true; });
    const auto begin = std::chrono::steady_clock::now();
    for (int round = 0; round < 3; ++round) loop.wait(begin + std::chrono::milliseconds(100));
    EXPECT_FALSE(answered);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(50));
}

TEST_F(ProgramChooserTest, WithoutAProgramNobodyIsAsked) {
    EXPECT_FALSE(ask("").wasAsked);
    EXPECT_FALSE(ask("/nowhere/zenity").wasAsked);
}

TEST_F(ProgramChooserTest, AQuestionThatIsTakenBackEndsItsDialog) {
    ProgramChooser chooser(loop, zenity("exec sleep 100"));
    bool answered = false;
    const auto begin = std::chrono::steady_clock::now();
    chooser.ask({"A|*.a||", FileKind::open, {}}, window, [&](const FileAnswer&) { answered = true; });
    chooser.cancel();
    loop.wait(std::chrono::steady_clock::now());
    EXPECT_FALSE(answered);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(50)) << "it isn't waited for";
}

}  // namespace
}  // namespace marnoth::test::program_chooser_test
