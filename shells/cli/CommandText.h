#pragma once

#include <string>
#include <vector>

namespace marnoth {

/// The command line as values, for whatever is written about it. All texts are those of `--help`.

/// An option, or an argument without one.
struct OptionText {
    std::vector<std::string> names;  ///< "--out" before "-o"; empty for an argument
    std::string value;               ///< what follows: "FILE.wav", "DIR", "16|24|32f"; empty for a switch
    std::string meaning;
    bool required = false;
    bool repeated = false;
};

struct CommandText {
    std::string name;
    std::string meaning;
    std::vector<OptionText> arguments;
    std::vector<OptionText> options;
    std::string footer;  ///< paragraphs, headings that end with a colon, and indented lines
};

struct ProgramText {
    CommandText program;  ///< without a command
    std::vector<CommandText> commands;
};

/// Of the program as it is built.
ProgramText describeCommandLine();

/// What a value may be, for whoever completes one.
struct ValueText {
    enum Kind { anything, words, file, folder, padFile };

    Kind kind = anything;
    std::vector<std::string> choices;  ///< of words
    std::string extension;             ///< of a file, with its dot; empty for any
};

/// By how it is written: "A|B" are words, "FILE.mid" is a file, and so on.
ValueText valueKind(const std::string& value);

}  // namespace marnoth
