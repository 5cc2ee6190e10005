#include "shells/cli/WrongWord.h"

#include <algorithm>
#include <cctype>

#include "shellkit/text/Nearest.h"
#include "shellkit/text/PlainText.h"

namespace marnoth {

namespace {

std::vector<std::string> commandNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(command->get_name());
    return names;
}

/// With their hyphens.
std::vector<std::string> optionNames(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
        for (const std::string& name : option->get_snames()) names.push_back("-" + name);
    }
    return names;
}

bool has(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// The command that was chosen, or the program.
const CLI::App& chosenIn(const CLI::App& app) {
    const auto chosen = app.get_subcommands();
    return chosen.empty() ? app : *chosen.front();
}

std::string helpCall(const CLI::App& app) {
    const CLI::App& chosen = chosenIn(app);
    return "; see marnoth " + (&chosen == &app ? "" : chosen.get_name() + " ") + "--help";
}

/// The first word that looks like an option and is none of these; empty when there is none.
std::string unknownOption(const std::vector<std::string>& arguments, const std::vector<std::string>& known) {
    for (const std::string& word : arguments) {
        std::string name = word.substr(0, word.find('='));
        const bool isLong = name.starts_with("--") && name.size() > 2;
        const bool isShort =
            name.size() == 2 && name[0] == '-' && std::isalpha(static_cast<unsigned char>(name[1]));
        if ((isLong || isShort) && !has(known, name)) return name;
    }
    return {};
}

}  // namespace

std::string tellWrongWord(const CLI::App& app, const std::vector<std::string>& arguments,
                          const std::string& reason) {
    const CLI::App& chosen = chosenIn(app);
    const std::vector<std::string> commands = commandNames(app);
    if (arguments.empty()) return "give a command: " + alternatives(commands) + helpCall(app);
    const bool isNone = &chosen == &app && !arguments.empty() && !arguments.front().starts_with('-');
    if (isNone && !has(commands, arguments.front()))
        return "there is no command \"" + arguments.front() + "\"" +
               nearestHint(arguments.front(), commands) + helpCall(app);
    const std::vector<std::string> options = optionNames(chosen);
    const std::string unknown = unknownOption(arguments, options);
    if (!unknown.empty())
        return (&chosen == &app ? "marnoth" : chosen.get_name()) + " has no option " + unknown +
               nearestHint(unknown, options) + helpCall(app);
    return reason + helpCall(app);
}

}  // namespace marnoth
