#include <gtest/gtest.h>

#include <algorithm>

#include "cli/Studio.h"
#include "shellkit/PngPicture.h"

namespace marnoth::test::page_commands_test {
namespace {

/// Lines that open a page go ahead of `script`; gives what it prints behind theirs.
std::string onPage(const TempFolder& folder, const std::string& script) {
    const std::string opening = "page open -> 00000000\n";
    const CliRun run = runScriptText(folder, "page open\n" + script);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(run.out.starts_with(opening)) << run.out;
    return run.out.substr(std::min(opening.size(), run.out.size()));
}

std::string onPage(const std::string& script) {
    return onPage(TempFolder(), script);
}

/// The reason that ended a script, without its place; its status must be 2.
std::string errorOf(const std::string& script) {
    const TempFolder folder;
    const CliRun run = runScriptText(folder, script);
    EXPECT_EQ(run.status, 2) << script;
    const std::string place = folder.name("test.mrs") + ":";
    EXPECT_TRUE(run.err.starts_with(place)) << run.err;
    return run.err.substr(std::min(run.err.find(": ", place.size()) + 2, run.err.size()));
}

std::string errorOnPage(const std::string& line) {
    return errorOf("page open\n" + line);
}

TEST(PageCommands, EveryCommandPrintsItselfAndItsResult) {
    for (const char* line : {"press 300 400", "move -5 0", "release 100000 -100000", "double 20 80",
                             "right 5 345", "hold shift", "hold ctrl", "let shift", "key 112", "type abc",
                             "focus 1140", "tick", "drop 300 235", "answer yes", "shot a.png", "page close"})
        EXPECT_EQ(onPage(std::string(line) + "\n"), std::string(line) + " -> 00000000\n");
}

TEST(PageCommands, NeedAPage) {
    const std::string reason = "there is no page: `page open` comes first\n";
    for (const char* line :
         {"page close", "press 1 1", "move 1 1", "release 1 1", "double 1 1", "right 1 1", "hold shift",
          "let shift", "key 1", "type a", "focus 1140", "choose 1143 None", "tick", "drop 1 1 a.wav",
          "answer yes", "text 1140", "state 1041", "view", "shot a.png"}) {
        EXPECT_EQ(errorOf(line), reason) << line;
        EXPECT_EQ(errorOnPage(std::string("page close\n") + line), reason) << line;
    }
}

TEST(PageCommands, ThereIsOnePageAtATime) {
    EXPECT_EQ(errorOnPage("page open"), "the page is open already\n");
    EXPECT_EQ(onPage("page close\npage open\npage close\n"),
              "page close -> 00000000\npage open -> 00000000\npage close -> 00000000\n");
}

TEST(PageCommands, RefuseArgumentsThatMakeNoSense) {
    for (const char* line : {"page",
                             "page show",
                             "page open now",
                             "press 1",
                             "press 1 2 3",
                             "press x 1",
                             "press 1.5 1",
                             "press 100001 0",
                             "move 0 -100001",
                             "release 99999999999999999999 0",
                             "double 0 2147483648",
                             "right -2147483649 0",
                             "drop 1",
                             "drop 100001 0 a.wav",
                             "hold alt",
                             "let 16",
                             "key 256",
                             "key -1",
                             "key a",
                             "type",
                             "type a b",
                             "tick 1",
                             "answer",
                             "answer a b",
                             "view 1",
                             "shot",
                             "shot a.png b.png"})
        EXPECT_NE(errorOnPage(line), "") << line;
}

TEST(PageCommands, NameTheControlThatIsTheWrongOne) {
    EXPECT_EQ(errorOnPage("focus 1039"), "the page has no control 1039\n");
    EXPECT_EQ(errorOnPage("text -1"), "the page has no control -1\n");
    EXPECT_EQ(errorOnPage("focus 1172"), "control 1172 is a text that can't have the keyboard\n");
    EXPECT_EQ(errorOnPage("choose 1140 C5"), "control 1140 isn't a combo\n");
    EXPECT_EQ(errorOnPage("choose 1143 \"Chan 17\""), "control 1143 has no item \"Chan 17\"\n");
    EXPECT_EQ(errorOnPage("text 1041"), "control 1041 shows no text\n");
    EXPECT_EQ(errorOnPage("text 1093"), "control 1093 shows no text\n");
    EXPECT_EQ(errorOnPage("state 1140"), "control 1140 has no state\n");
    EXPECT_EQ(errorOnPage("state 1173"), "control 1173 has no state\n");
    EXPECT_EQ(errorOnPage("state 1133"), "control 1133 has no state\n");
}

TEST(PageCommands, TextAndStateTellWhatControlsShow) {
    EXPECT_EQ(onPage("text 1143\ntext 1174\ntext 1135\nstate 1143\nstate 1174\nstate 1024\nstate 1093\n"),
              "text 1143 -> 00000000 \"Mix Only\"\n"
              "text 1174 -> 00000000 \"12\"\n"
              "text 1135 -> 00000000 \"0\"\n"
              "state 1143 -> 00000000 0\n"
              "state 1174 -> 00000000 6\n"
              "state 1024 -> 00000000 0\n"
              "state 1093 -> 00000000 50\n");
}

TEST(PageCommands, AClickOnATogglePutsItDown) {
    EXPECT_EQ(onPage("press 160 48\nrelease 160 48\nstate 1024\nGetPadMute 0\n"),
              "press 160 48 -> 00000000\nrelease 160 48 -> 00000000\n"
              "state 1024 -> 00000000 1\nGetPadMute 0 -> 00000000 1\n");
}

TEST(PageCommands, ChooseSetsWhatTheComboStandsFor) {
    EXPECT_EQ(onPage("choose 1143 \"Chan 16\"\nGetPadOutput 0\nstate 1143\nchoose 1174 8\nview\n"),
              "choose 1143 \"Chan 16\" -> 00000000\nGetPadOutput 0 -> 00000000 16\n"
              "state 1143 -> 00000000 16\nchoose 1174 8 -> 00000000\n"
              "view -> 00000000 0 -1 54 10 5 0 0 0 0 0 /\n");
}

TEST(PageCommands, FocusSelectsTheWholeTextEachTime) {
    EXPECT_EQ(onPage("focus 1134\ntype 12\nfocus 1134\ntype 7\ntext 1134\n"),
              "focus 1134 -> 00000000\ntype 12 -> 00000000\nfocus 1134 -> 00000000\n"
              "type 7 -> 00000000\ntext 1134 -> 00000000 \"7\"\n");
}

std::string click(const std::string& at) {
    return "press " + at + "\nrelease " + at + "\n";
}

TEST(PageCommands, ViewTellsZoomStripAndSelections) {
    const Studio studio;
    // Zoomed in once, a beat has 54 * 1.5 pixels; rows are one step higher; the strip shows the key map.
    const std::string seen = click("570 540") + click("590 523") + click("16 260");
    // Eight grains of a quarter beat: 20 pixels each from 137 on. The row of pad 5 begins at 361 + 4 * 15.
    const std::string selected = click("167 428") + "hold shift\n" + click("207 428") + "let shift\n";
    const std::string out = onPage(studio.folder, "connect 44100 2 mix\nLoadFileToPad 4 a a.wav\ntick\n" +
                                                      seen + "tick\n" + selected + "view\n");
    EXPECT_TRUE(out.ends_with("\nview -> 00000000 4 0 81 15 6 1 0 0 0 0 4:1 4:3 / 0:3\n")) << out;
}

const std::string kClear = click("55 33");
const std::string kAsksToClear =
    "? message \"Are you sure you want to clear the contents of this project?\" -> ";

TEST(PageCommands, QuestionsStandAheadOfTheirCommand) {
    EXPECT_EQ(onPage(kClear),
              "press 55 33 -> 00000000\n" + kAsksToClear + "cancel\nrelease 55 33 -> 00000000\n");
    EXPECT_EQ(onPage("answer yes\n" + kClear), "answer yes -> 00000000\npress 55 33 -> 00000000\n" +
                                                   kAsksToClear + "yes\nrelease 55 33 -> 00000000\n");
}

TEST(PageCommands, AnswersServeOneQuestionEach) {
    const std::string out = onPage("answer \"oh no\"\nanswer yes\n" + kClear + kClear + kClear);
    const auto first = out.find(kAsksToClear + "\"oh no\"\n");
    const auto second = out.find(kAsksToClear + "yes\n");
    const auto third = out.find(kAsksToClear + "cancel\n");
    ASSERT_NE(third, out.npos) << out;
    EXPECT_LT(first, second);
    EXPECT_LT(second, third);
}

TEST(PageCommands, AnswersAndHeldKeysGoWithThePage) {
    const std::string out = onPage(
        "answer yes\nhold ctrl\npage close\npage open\nSetPadMute 0 1\n"
        "PushUndoState\nSetPadMute 0 0\nfocus 1132\nkey 90\nGetPadMute 0\n" +
        kClear);
    EXPECT_NE(out.find("GetPadMute 0 -> 00000000 0\n"), out.npos) << out;
    EXPECT_NE(out.find(kAsksToClear + "cancel\n"), out.npos) << out;
}

TEST(PageCommands, AQuestionCanBeAnsweredLater) {
    // What a user does meanwhile isn't for the page.
    EXPECT_EQ(onPage("SetPadMute 0 1\nanswer later\n" + kClear +
                     "press 160 48\nGetPadMute 0\nanswer yes\nGetPadMute 0\n"),
              "SetPadMute 0 1 -> 00000000\nanswer later -> 00000000\npress 55 33 -> 00000000\n"
              "release 55 33 -> 00000000\npress 160 48 -> 00000000\nGetPadMute 0 -> 00000000 1\n" +
                  kAsksToClear + "yes\nanswer yes -> 00000000\nGetPadMute 0 -> 00000000 0\n");
}

TEST(PageCommands, TheMenuOfAPadIsAQuestion) {
    EXPECT_EQ(onPage("right 160 20\n"),
              "? menu 32770:Open Audio File 32771:Looping 32772:Synced Playback 32773:Clear Pad -> cancel\n"
              "right 160 20 -> 00000000\n");
}

TEST(PageCommands, FilesAreRelativeToTheScript) {
    const TempFolder folder;
    std::filesystem::create_directories(folder / "my sounds");
    steady(0.25).write(folder / "my sounds" / "a.wav");
    const std::string out = onPage(folder,
                                   "connect 44100 2 mix\nLoadFileToBin a \"my sounds/a.wav\"\n"
                                   "answer \"my sounds/a.wav\"\npress 122 58\nrelease 122 58\n"
                                   "drop 160 20 \"my sounds/a.wav\"\nGetGrainCount 1 0\nGetBinFileCount\n");
    EXPECT_NE(out.find("? file open \"Wave Files (*.wav)|*.wav||\" -> \"my sounds/a.wav\"\n"), out.npos)
        << out;
    EXPECT_NE(out.find("GetGrainCount 1 0 -> 00000000 8\n"), out.npos) << out;
    // One file, whichever way its name came.
    EXPECT_NE(out.find("GetBinFileCount -> 00000000 1\n"), out.npos) << out;
}

TEST(PageCommands, AProjectIsSavedBesideTheScript) {
    const TempFolder folder;
    onPage(folder, "answer kept.mrn\npress 35 35\nrelease 35 35\n");
    EXPECT_TRUE(std::filesystem::exists(folder / "kept.mrn"));
}

TEST(PageCommands, AShotIsAPictureOfTheWholePage) {
    const TempFolder folder;
    onPage(folder, "shot a.png\nshot b.png\n");
    const auto header = pngHeader(folder / "out" / "a.png");
    ASSERT_TRUE(header);
    EXPECT_EQ(header->width, 600u);
    EXPECT_EQ(header->height, 553u);
    EXPECT_EQ(readText(folder / "out" / "a.png"), readText(folder / "out" / "b.png"));
    EXPECT_FALSE(std::filesystem::exists(folder / "out" / "a.png.part"));
}

TEST(PageCommands, AShotShowsTheListMenuOrQuestionThatIsOpen) {
    const TempFolder folder;
    onPage(folder,
           "shot a.png\npress 590 28\nrelease 590 28\nshot list.png\nkey 27\npress 20 548\nrelease 20 548\n"
           "shot b.png\nanswer later\nright 300 100\nshot menu.png\nanswer cancel\npress 190 34\n"
           "release 190 34\nanswer later\n" +
               kClear + "shot question.png\nanswer no\nshot c.png\n");
    const auto bytes = [&](const char* name) { return readText(folder / "out" / name); };
    EXPECT_EQ(bytes("a.png"), bytes("b.png"));
    EXPECT_EQ(bytes("a.png"), bytes("c.png"));
    for (const char* name : {"list.png", "menu.png", "question.png"})
        EXPECT_NE(bytes(name), bytes("a.png")) << name;
#ifndef _WIN32
    // In the colour of their frames: the list under its combo, the menu's corner, and that of the message.
    const Color frame{160, 172, 191};
    EXPECT_EQ(readPng(folder / "out" / "list.png").at(534, 34), frame);
    EXPECT_EQ(readPng(folder / "out" / "menu.png").at(300, 100), frame);
    EXPECT_EQ(readPng(folder / "out" / "question.png").at(119, 300), frame);
#endif
}

TEST(PageCommands, AShotThatCannotBeWrittenIsAFailure) {
    const TempFolder folder;
    std::filesystem::create_directories(folder / "out" / "a.png" / "in the way");
    for (const char* name : {"a.png", "missing/b.png"}) {
        const CliRun run =
            runScriptText(folder, "connect 44100 2 mix\nrender 10\npage open\nshot " + std::string(name));
        EXPECT_EQ(run.status, 1) << name;
        EXPECT_TRUE(std::filesystem::exists(folder / "out" / "mix.wav"));
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "out" / "a.png.part"));
}

TEST(PageCommands, APageThatIsLeftOpenGoesWithTheScript) {
    const TempFolder folder;
    const CliRun run = runScriptText(folder, "connect 44100 2 mix\npage open\nrender 700\nnonsense\n");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(readWaveFrames(folder / "out" / "mix.wav").samples.size(), 1400u);
}

TEST(PageCommands, SurviveGesturesFarOutside) {
    onPage(
        "press 300 400\nmove 100000 100000\nmove -100000 -100000\nrelease 100000 0\n"
        "press 590 400\nmove 590 100000\nrelease 590 -100000\npress 300 541\nmove 100000 541\n"
        "release -100000 541\ndouble -100000 -100000\nright 100000 100000\ndrop 100000 100000 none.wav\n"
        "press 70 30\nkey 0\nkey 255\nhold ctrl\nkey 90\ntick\n");
}

}  // namespace
}  // namespace marnoth::test::page_commands_test
