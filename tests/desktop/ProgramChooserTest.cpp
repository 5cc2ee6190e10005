#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <optional>

#include "shellkit/TempFolder.h"
#include "shells/desktop/ProgramChooser.h"

namespace marnoth::test::program_chooser_test {
namespace {

using Answer = std::optional<std::string>;

/// A stand-in for zenity, and a user who waits for its answer.
class ProgramChooserTest : public testing::Test {
protected:
    /// A program that does what `script` says.
    std::string zenity(const std::string& script) {
        writeText(folder_ / "zenity", "#!/bin/sh\n" + script + "\n");
        std::filesystem::permissions(folder_ / "zenity", std::filesystem::perms::owner_all);
        return folder_.name("zenity");
    }
    /// What `program` answers; nothing when no answer has come in time.
    std::optional<Answer> ask(const std::string& program) {
        ProgramChooser chooser(loop, program, [this](const std::string& why) { told = why; });
        std::optional<Answer> answer;
        chooser.ask("Wave Files (*.wav)|*.wav||", FileKind::open, 1,
                    [&](const Answer& given) { answer = given; });
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!answer && std::chrono::steady_clock::now() < end) loop.wait(end);
        return answer;
    }

    EventLoop loop;
    std::string told;

private:
    TempFolder folder_;
};

TEST_F(ProgramChooserTest, GivesTheFileThatWasChosen) {
    EXPECT_EQ(ask(zenity("echo '/music/my loop.wav'")), Answer("/music/my loop.wav"));
    EXPECT_EQ(told, "");
}

TEST_F(ProgramChooserTest, WaitsForAnAnswerThatComesLate) {
    EXPECT_EQ(ask(zenity("sleep 0.3; echo /a.wav")), Answer("/a.wav"));
}

TEST_F(ProgramChooserTest, ADialogThatIsClosedChoosesNothing) {
    const auto answer = ask(zenity("exit 1"));
    ASSERT_TRUE(answer);
    EXPECT_EQ(*answer, Answer());
}

TEST_F(ProgramChooserTest, WhatIsNoFullPathIsNoFile) {
    const auto answer = ask(zenity("echo relative.wav"));
    ASSERT_TRUE(answer);
    EXPECT_EQ(*answer, Answer());
}

TEST_F(ProgramChooserTest, WithoutAProgramTheUserIsToldWhatToDo) {
    const auto answer = ask("");
    ASSERT_TRUE(answer);
    EXPECT_EQ(*answer, Answer());
    EXPECT_NE(told.find("zenity or kdialog"), std::string::npos);
}

TEST_F(ProgramChooserTest, OneThatCantBeStartedIsNamed) {
    const auto answer = ask("/nowhere/zenity");
    ASSERT_TRUE(answer);
    EXPECT_EQ(*answer, Answer());
    EXPECT_EQ(told, "/nowhere/zenity can't be started.");
}

TEST_F(ProgramChooserTest, AQuestionThatIsTakenBackEndsItsDialog) {
    ProgramChooser chooser(loop, zenity("sleep 100"), [](const std::string&) {});
    bool answered = false;
    const auto begin = std::chrono::steady_clock::now();
    chooser.ask("A|*.a||", FileKind::open, 1, [&](const Answer&) { answered = true; });
    chooser.cancel();
    loop.wait(std::chrono::steady_clock::now());
    EXPECT_FALSE(answered);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(50)) << "it isn't waited for";
}

}  // namespace
}  // namespace marnoth::test::program_chooser_test
