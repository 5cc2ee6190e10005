#include "shellkit/text/PlainText.h"
#include "shells/cli/Completions.h"

namespace marnoth {

namespace {

std::string inFishQuotes(const std::string& text) {
    std::string safe = "'";
    for (const char c : text) {
        if (c == '\'' || c == '\\') safe += '\\';
        safe += c;
    }
    return safe + "'";
}

/// What stands where a value does: nothing else, where that is known.
std::string fishValue(const std::string& value) {
    const ValueText kind = valueKind(value);
    switch (kind.kind) {
        case ValueText::words:
            return " -x -a " + inFishQuotes(joined(kind.choices, " "));
        case ValueText::file:
            return kind.extension.empty() ? " -r -F"
                                          : " -x -a '(__fish_complete_suffix " + kind.extension + ")'";
        case ValueText::folder:
            return " -x -a '(__fish_complete_directories)'";
        // The shell itself completes what stands behind "=".
        case ValueText::padFile:
            return " -r -F";
        case ValueText::anything:
            break;
    }
    return " -x";
}

std::string fishLine(const std::string& condition, const OptionText& option) {
    std::string line = "complete -c marnoth -n " + inFishQuotes(condition);
    for (const std::string& name : option.names)
        line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    if (!option.value.empty()) line += fishValue(option.value);
    return line + " -d " + inFishQuotes(option.meaning) + "\n";
}

}  // namespace

std::string fishCompletion(const ProgramText& text) {
    constexpr const char* kNoCommand = "__fish_use_subcommand";
    std::string script = "# fish completion of marnoth\n\ncomplete -c marnoth -f\n";
    for (const OptionText& option : text.program.options) script += fishLine(kNoCommand, option);
    for (const CommandText& command : text.commands)
        script += "complete -c marnoth -n " + inFishQuotes(kNoCommand) + " -a " + command.name + " -d " +
                  inFishQuotes(command.meaning) + "\n";
    for (const CommandText& command : text.commands) {
        const std::string chosen = "__fish_seen_subcommand_from " + command.name;
        for (const OptionText& option : command.options) script += fishLine(chosen, option);
        for (const OptionText& argument : command.arguments) script += fishLine(chosen, argument);
    }
    return script;
}

}  // namespace marnoth
