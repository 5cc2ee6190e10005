#include <cctype>

#include "shellkit/text/PlainText.h"
#include "shells/cli/Completions.h"
#include "shells/cli/PadSettings.h"

namespace marnoth {

namespace {

constexpr const char* kHead = R"(# bash completion of marnoth

_marnoth_words() { COMPREPLY=($(compgen -W "$1" -- "$word")); }

# Files that match a pattern, and folders.
_marnoth_files() {
    local IFS=$'\n'
    compopt -o filenames 2>/dev/null
    COMPREPLY=($(compgen -d -- "$word"; compgen -f -X "!$1" -- "$word" | while read -r name; do
        [ -d "$name" ] || printf '%s\n' "$name"
    done))
}

_marnoth_folders() {
    local IFS=$'\n'
    compopt -o filenames 2>/dev/null
    COMPREPLY=($(compgen -d -- "$word"))
}

# What stands behind the "=" of a pad: a file, or behind a comma the name of a setting.
_marnoth_pad() {
    local IFS=$'\n' settings
    if [[ $word != *,* ]]; then
        _marnoth_files "$1"
        return
    fi
    settings=${word%,*},
    compopt -o nospace 2>/dev/null
    word=${word##*,} _marnoth_words "$2"
    COMPREPLY=("${COMPREPLY[@]/#/$settings}")
}

_marnoth() {
    local word=${COMP_WORDS[COMP_CWORD]} command= option= pad= i
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; ++i)); do
        case ${COMP_WORDS[i]} in
            @COMMANDS@)
                command=${COMP_WORDS[i]}
                break
                ;;
        esac
    done
    # "=" is a word by itself where it breaks words.
    i=$COMP_CWORD
    if [[ $word == "=" ]]; then
        word=
        i=$((i + 1))
    fi
    option=${COMP_WORDS[i - 1]}
    if [[ $option == "=" ]]; then
        option=${COMP_WORDS[i - 2]}
        if [[ ${COMP_WORDS[i - 3]} == --pad && $option != --* ]]; then
            option=--pad
            pad=yes
        elif [[ $option != --* ]]; then
            return
        fi
    elif [[ $word == --*=* ]]; then
        option=${word%%=*}
        word=${word#*=}
    fi
    case "$command $option" in
)";

constexpr const char* kTail = R"(
complete -F _marnoth marnoth
)";

/// A pattern of files whose extension is this, in letters of either case.
std::string bashPattern(const std::string& extension) {
    std::string text = "*";
    for (const char c : extension) {
        const auto upper = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        text += c == upper ? std::string(1, c) : std::string{'[', c, upper, ']'};
    }
    return text;
}

std::string settingWords() {
    std::vector<std::string> words;
    for (const PadSettingWord& word : padSettingWords()) words.push_back(word.name + "=");
    return joined(words, "\n");
}

std::string completionOf(const std::string& value) {
    const ValueText kind = valueKind(value);
    switch (kind.kind) {
        case ValueText::words:
            return "_marnoth_words \"" + joined(kind.choices, " ") + "\"";
        case ValueText::file:
            return "_marnoth_files '" + bashPattern(kind.extension) + "'";
        case ValueText::folder:
            return "_marnoth_folders";
        case ValueText::padFile:
            return "[[ -n $pad ]] && _marnoth_pad '" + bashPattern(kind.extension) + "' '" + settingWords() +
                   "'";
        case ValueText::anything:
            break;
    }
    return ":";
}

std::string optionWords(const CommandText& command) {
    std::vector<std::string> names;
    for (const OptionText& option : command.options)
        names.insert(names.end(), option.names.begin(), option.names.end());
    return joined(names, " ");
}

/// What follows an option that takes a value.
std::string valueCases(const CommandText& command) {
    std::string cases;
    for (const OptionText& option : command.options) {
        if (option.value.empty()) continue;
        std::vector<std::string> names;
        for (const std::string& name : option.names) names.push_back("\"" + command.name + " " + name + "\"");
        cases += "        " + joined(names, " | ") + ")\n            " + completionOf(option.value) +
                 "\n            return\n            ;;\n";
    }
    return cases;
}

/// What may stand where no option waits for a value.
std::string wordCase(const CommandText& command) {
    std::string text = "        " + command.name + ")\n";
    const std::string words = "_marnoth_words \"" + optionWords(command) + "\"";
    if (command.arguments.empty()) return text + "            " + words + "\n            ;;\n";
    return text + "            if [[ $word == -* ]]; then\n                " + words +
           "\n            else\n                " + completionOf(command.arguments.front().value) +
           "\n            fi\n            ;;\n";
}

}  // namespace

std::string bashCompletion(const ProgramText& text) {
    std::vector<std::string> commands;
    for (const CommandText& command : text.commands) commands.push_back(command.name);
    std::string script = kHead;
    const std::string mark = "@COMMANDS@";
    script.replace(script.find(mark), mark.size(), joined(commands, " | "));
    for (const CommandText& command : text.commands) script += valueCases(command);
    script += "    esac\n    case $command in\n";
    for (const CommandText& command : text.commands) script += wordCase(command);
    script +=
        "        *) _marnoth_words \"" + joined(commands, " ") + " " + optionWords(text.program) + "\" ;;\n";
    return script + "    esac\n}" + kTail;
}

}  // namespace marnoth
