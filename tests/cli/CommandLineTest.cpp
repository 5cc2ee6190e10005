#include <gtest/gtest.h>

#include <algorithm>

#include "cli/CliRun.h"
#include "platform/text/Text.h"
#include "support/WaveFile.h"

namespace marnoth::test::command_line_test {
namespace {

using Words = std::vector<std::string>;

TEST(CommandLine, WrongUseGetsOneLineAndStatusTwo) {
    for (const Words& words :
         std::vector<Words>{{},
                            {"play"},
                            {"script"},
                            {"script", "a.mrs"},
                            {"script", "a.mrs", "b.mrs", "--out", "x"},
                            {"render", "--pad", "1=a.wav"},
                            {"render", "--out", "a.wav"},
                            {"render", "--pad", "a.wav", "--out", "b.wav"},
                            {"render", "--pad", "1=a.wav", "--pad", "1=b.wav", "--out", "c.wav"},
                            {"render", "--pad", "1=a.wav", "--out", "b.wav", "--tempo", "fast"},
                            {"render", "--pad", "1=a.wav", "--out", "b.wav", "--tempo", "0"},
                            {"render", "--pad", "1=a.wav", "--out", "b.wav", "--tempo", "nan"},
                            {"render", "--pad", "1=a.wav", "--out", "b.wav", "--beats", "-4"},
                            {"render", "--pad", "1=a.wav", "--out", "b.wav", "--beats", "nan"},
                            {"render", "--pad", "1=a.wav", "--out", "b.wav", "--rate", "44100.5"},
                            {"render", "--pad", "1=a.wav", "--out", "b.wav", "--rate", "5"},
                            {"render", "--pad", "1=a.wav", "--out", "b.wav", "--block", "0"},
                            {"render", "--pad", "1=a.wav", "--out", "b.wav", "--key", "H"},
                            {"info"},
                            {"info", "a.wav", "--xml"}}) {
        const CliRun run = marnoth(words);
        EXPECT_EQ(run.status, 2) << testing::PrintToString(words);
        EXPECT_EQ(run.out, "");
        EXPECT_TRUE(run.err.starts_with("marnoth: ")) << run.err;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    }
}

TEST(CommandLine, AFileThatFailsGetsItsReasonAndStatusOne) {
    const TempFolder folder;
    for (const Words& words : std::vector<Words>{
             {"script", folder.name("none.mrs"), "--out", folder.name("out")},
             {"info", folder.name("none.wav")},
             {"render", "--pad", "1=" + folder.name("none.wav"), "--out", folder.name("out.wav")}}) {
        const CliRun run = marnoth(words);
        EXPECT_EQ(run.status, 1) << words.front();
        EXPECT_NE(run.err.find("there is no such file"), std::string::npos) << run.err;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    }
}

#ifdef _WIN32
constexpr const char* kGiveACommand = "give a command: script, render, info or page; see marnoth --help";
#else
constexpr const char* kGiveACommand =
    "give a command: script, render, info, page, play or devices; see marnoth --help";
#endif

TEST(CommandLine, AnUnknownWordIsNamedWithTheOneThatWasMeant) {
    struct Case {
        Words words;
        const char* told;
    };
    for (const auto& [words, told] :
         {Case{{"rendr", "--out", "a.wav"}, "no command \"rendr\" (did you mean render?)"},
          Case{{}, kGiveACommand}, Case{{"banana"}, "no command \"banana\"; see marnoth --help"},
          Case{{"render", "--tmpo", "3", "--out", "a.wav"},
               "render has no option --tmpo (did you mean --tempo?)"},
          Case{{"render", "--tmpo=3", "--out", "a.wav"}, "--tmpo (did you mean --tempo?)"},
          Case{{"render", "--pad", "1=a.wav", "-x", "--out", "a.wav"}, "render has no option -x"},
          Case{{"page", "--key-mpa", "--out", "a.png"},
               "page has no option --key-mpa (did you mean --key-map?)"},
          Case{{"--versoin"}, "marnoth has no option --versoin (did you mean --version?)"}}) {
        const CliRun run = marnoth(words);
        EXPECT_EQ(run.status, 2);
        EXPECT_NE(run.err.find(told), std::string::npos) << run.err;
    }
}

TEST(CommandLine, ComponentsArePlayedWhereThereAreAny) {
    const bool offered = marnoth({"script", "--help"}).out.find("  --com ") != std::string::npos;
#ifdef _WIN32
    EXPECT_TRUE(offered);
#else
    EXPECT_FALSE(offered);
    const CliRun run = marnoth({"script", "a.mrs", "--com", "--out", "a"});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "marnoth: script has no option --com; see marnoth script --help\n");
#endif
}

TEST(CommandLine, HelpNamesTheEnvironment) {
    const std::string help = marnoth({"--help"}).out;
    EXPECT_NE(help.find("Environment:\n  TMPDIR"), std::string::npos) << help;
}

TEST(CommandLine, HelpComesWithExamples) {
    for (const char* command : {"script", "render", "info", "page"}) {
        const CliRun run = marnoth({command, "--help"});
        EXPECT_EQ(run.status, 0);
        EXPECT_NE(run.out.find("Examples:\n  marnoth " + std::string(command)), std::string::npos) << run.out;
    }
    EXPECT_EQ(marnoth({"--help"}).status, 0);
    EXPECT_TRUE(marnoth({"--version"}).out.starts_with("marnoth "));
}

TEST(Info, TellsFormatTagsLoopAndGrains) {
    const TempFolder folder;
    WaveFile()
        .channels(2)
        .bits(24)
        .frames(44100)
        .info("INAM", "a title")
        .acid(2, 60, 2, 120)
        .strc(2)
        .write(folder / "a.wav");
    const CliRun run = marnoth({"info", folder.name("a.wav")});
    ASSERT_EQ(run.status, 0) << run.err;
    for (const char* part : {"PCM, 24 bits, 2 channels, 44100 Hz", "44100 frames, 1.000 s",
                             "Name/Title: a title", "2 beats at 120.00 BPM, root note C", "Quarter Notes",
                             "grains    2\n", "beat    1.0000, 1.0000 beats"})
        EXPECT_NE(run.out.find(part), std::string::npos) << part << "\n" << run.out;
}

TEST(Info, TellsTheSameAsJson) {
    const TempFolder folder;
    WaveFile().frames(44100).info("INAM", "a \"title\"").acid(2, 57, 2, 120).strc(2).write(folder / "a.wav");
    const CliRun run = marnoth({"info", folder.name("a.wav"), "--json"});
    ASSERT_EQ(run.status, 0) << run.err;
    for (const char* part :
         {"\"rate\": 44100", "\"frames\": 44100", R"("Name/Title": "a \"title\"")", "\"beats\": 2",
          "\"rootNote\": \"A\"", "\"startBeats\": 1.0", "\"refused\": null"})
        EXPECT_NE(run.out.find(part), std::string::npos) << part << "\n" << run.out;
}

#ifndef _WIN32
TEST(Info, SaysThatANameIsTheProblem) {
    const TempFolder folder;
    WaveFile().frames(100).write(folder / "a.wav");
    std::filesystem::rename(folder / "a.wav", folder / "\xFF.wav");
    const CliRun run = marnoth({"info", folder.name("\xFF.wav")});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("code page"), std::string::npos) << run.err;
}
#endif

TEST(Info, HostileTagsStayInTheirLine) {
    const TempFolder folder;
    WaveFile().frames(100).info("INAM", "a\nb\x1B[31m \"c\" \xFF\xFE").write(folder / "a.wav");
    EXPECT_NE(marnoth({"info", folder.name("a.wav")}).out.find("Name/Title: a b [31m \"c\" "),
              std::string::npos);
    const std::string json = marnoth({"info", folder.name("a.wav"), "--json"}).out;
    EXPECT_NE(json.find(R"("Name/Title": "a\nb\u001b[31m \"c\" )"), std::string::npos) << json;
    EXPECT_TRUE(isUtf8(json));
}

TEST(Info, TellsWhyTheInstrumentRefusesAFile) {
    const TempFolder folder;
    WaveFile().rate(8000).frames(8000 * 31).write(folder / "long.wav");
    const CliRun run = marnoth({"info", folder.name("long.wav")});
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("grains    none: it is too long"), std::string::npos) << run.out;
}

TEST(Info, ASingleGrainFileHasOneGrain) {
    const TempFolder folder;
    WaveFile().frames(44100 * 3).write(folder / "a.wav");
    const CliRun run = marnoth({"info", folder.name("a.wav")});
    // Three seconds are the nearest to eight beats as if at 120.
    EXPECT_NE(run.out.find("loop      none\ngrains    1\n     1    beat    0.0000, 8.0000 beats\n"),
              std::string::npos)
        << run.out;
}

}  // namespace
}  // namespace marnoth::test::command_line_test
