#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "cli/CliRun.h"
#include "shells/cli/Completions.h"
#include "shells/cli/ManualPage.h"

namespace marnoth::test::command_documents_test {
namespace {

#ifdef _WIN32
const std::vector<std::string> kCommands{"script", "render", "info", "page"};
#else
const std::vector<std::string> kCommands{"script", "render", "info", "page", "play", "devices"};
#endif

/// The long options that a command's help tells of, by their lines.
std::set<std::string> optionsInHelp(const std::string& command) {
    const std::string help = marnoth({command, "--help"}).out;
    const std::regex line("\n  (?:-[a-z],)?--([a-z-]+)");
    std::set<std::string> options;
    for (std::sregex_iterator it(help.begin(), help.end(), line), end; it != end; ++it)
        options.insert((*it)[1]);
    return options;
}

std::size_t occurrences(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != text.npos; at = text.find(part, at + 1)) ++count;
    return count;
}

TEST(CommandDocuments, TheManualTellsOfEachOptionUnderItsCommand) {
    const std::string page = manualPage(describeCommandLine());
    for (const std::string& command : kCommands) {
        const std::size_t begin = page.find("\n.SS " + command + "\n");
        ASSERT_NE(begin, page.npos) << command;
        const std::string section = page.substr(begin, page.find("\n.S", begin + 1) - begin);
        const auto options = optionsInHelp(command);
        EXPECT_GE(options.size(), 2u);
        for (std::string option : options) {
            option = std::regex_replace(option, std::regex("-"), "\\-");
            EXPECT_NE(section.find(".TP\n\\fB\\-\\-" + option), section.npos) << command << " --" << option;
        }
    }
    EXPECT_NE(page.find("\n.SH ENVIRONMENT\n"), page.npos);
    EXPECT_NE(page.find("\n.SH EXIT STATUS\n"), page.npos);
    EXPECT_NE(page.find("volume="), page.npos) << "settings of pads";
}

TEST(CommandDocuments, TextInTheManualCantBeTakenForRequests) {
    ProgramText text = describeCommandLine();
    text.commands.front().meaning = ".so /etc/passwd";
    text.commands.front().footer = "'x\n  .y \\fB\n";
    const std::string page = manualPage(text);
    EXPECT_NE(page.find("\n\\&.so /etc/passwd"), page.npos);
    EXPECT_NE(page.find("\n\\&'x\n"), page.npos);
    EXPECT_NE(page.find("\n  .y \\efB\n"), page.npos);
}

TEST(CommandDocuments, CompletionsKnowEachOptionOfEachCommand) {
    const ProgramText text = describeCommandLine();
    const std::string bash = bashCompletion(text);
    const std::string zsh = zshCompletion(text);
    const std::string fish = fishCompletion(text);
    for (const std::string& command : kCommands) {
        const std::size_t begin = bash.find("\n        " + command + ")\n");
        ASSERT_NE(begin, bash.npos) << command;
        const std::string words = bash.substr(begin, bash.find(";;", begin) - begin);
        const std::size_t zshBegin = zsh.find("\n                " + command + ") _arguments");
        ASSERT_NE(zshBegin, zsh.npos) << command;
        const std::string arguments = zsh.substr(zshBegin, zsh.find(";;", zshBegin) - zshBegin);
        for (const std::string& option : optionsInHelp(command)) {
            EXPECT_TRUE(std::regex_search(words, std::regex("[ \"]--" + option + "[ \"]")))
                << command << " --" << option;
            EXPECT_TRUE(std::regex_search(arguments, std::regex("'(\\*|\\([^)]*\\))--" + option + "\\[")))
                << command << " --" << option;
            EXPECT_TRUE(std::regex_search(
                fish, std::regex("__fish_seen_subcommand_from " + command + "' [^\n]*-l " + option + " ")))
                << command << " --" << option;
        }
    }
    EXPECT_EQ(occurrences(fish, "\ncomplete -c marnoth -n '__fish_use_subcommand' -a "), kCommands.size());
}

TEST(CommandDocuments, ValuesAreKnownByHowTheyAreWritten) {
    EXPECT_EQ(valueKind("16|24|32f").choices, (std::vector<std::string>{"16", "24", "32f"}));
    EXPECT_EQ(valueKind("FILE.mid").extension, ".mid");
    EXPECT_EQ(valueKind("PROJECT.mrn").kind, ValueText::file);
    EXPECT_EQ(valueKind("FILE").extension, "");
    EXPECT_EQ(valueKind("DIR").kind, ValueText::folder);
    EXPECT_EQ(valueKind("N=FILE.wav[,SETTING...]").kind, ValueText::padFile);
    EXPECT_EQ(valueKind("BPM").kind, ValueText::anything);
}

}  // namespace
}  // namespace marnoth::test::command_documents_test
