#include "shellkit/text/PlainText.h"
#include "shells/cli/Completions.h"

namespace marnoth {

namespace {

/// Inside single quotes, with a backslash before each of `special`.
std::string escaped(const std::string& text, const std::string& special) {
    std::string safe;
    for (const char c : text) {
        if (special.find(c) != special.npos) safe += '\\';
        safe += c == '\'' ? "'\\''" : std::string(1, c);
    }
    return safe;
}

std::string zshAction(const std::string& value) {
    const ValueText kind = valueKind(value);
    switch (kind.kind) {
        case ValueText::words:
            return "(" + joined(kind.choices, " ") + ")";
        case ValueText::file:
            return kind.extension.empty() ? "_files" : "_files -g \"(#i)*" + kind.extension + "\"";
        case ValueText::folder:
            return "_files -/";
        // Behind the pad's number and its "=".
        case ValueText::padFile:
            return "{ compset -P \"*=\" && _files -g \"(#i)*" + kind.extension + "\" }";
        case ValueText::anything:
            break;
    }
    return " ";
}

std::string zshValue(const OptionText& option) {
    if (option.value.empty()) return {};
    return ":" + escaped(option.value, ":\\") + ":" + zshAction(option.value);
}

/// A line for each name; those of one option exclude each other unless it may be repeated.
std::string zshLines(const OptionText& option) {
    const std::string excluded = option.repeated ? "*" : "(" + joined(option.names, " ") + ")";
    const std::string told = "[" + escaped(option.meaning, "[]:\\") + "]" + zshValue(option);
    std::string lines;
    for (const std::string& name : option.names)
        lines.append(" \\\n                '").append(excluded).append(name).append(told).append("'");
    return lines;
}

std::string zshLines(const CommandText& command) {
    std::string lines;
    for (const OptionText& option : command.options) lines += zshLines(option);
    for (const OptionText& argument : command.arguments)
        lines += " \\\n                '" + std::string(argument.required ? ":" : "::") +
                 escaped(argument.meaning, ":\\") + ":" + zshAction(argument.value) + "'";
    return lines;
}

}  // namespace

std::string zshCompletion(const ProgramText& text) {
    std::string script =
        "#compdef marnoth\n\n_marnoth() {\n    local context state line\n    local -a commands\n"
        "    commands=(\n";
    for (const CommandText& command : text.commands)
        script += "        '" + command.name + ":" + escaped(command.meaning, ":\\") + "'\n";
    script += "    )\n    _arguments -C" + zshLines(text.program) +
              " \\\n                '1:command:->command' \\\n                '*::argument:->argument'\n"
              "    case $state in\n        command) _describe command commands ;;\n        argument)\n"
              "            case $words[1] in\n";
    for (const CommandText& command : text.commands)
        script += "                " + command.name + ") _arguments" + zshLines(command) + " ;;\n";
    return script + "            esac\n            ;;\n    esac\n}\n\n_marnoth \"$@\"\n";
}

}  // namespace marnoth
