#include "shells/cli/CommandText.h"

#include <sstream>

#include "shells/cli/CommandGrammar.h"

namespace marnoth {

namespace {

OptionText describe(const CLI::Option& option) {
    OptionText text;
    for (const std::string& name : option.get_lnames()) text.names.push_back("--" + name);
    for (const std::string& name : option.get_snames()) text.names.push_back("-" + name);
    const bool isSwitch = option.get_type_size() == 0;
    text.value = option.get_positional() ? option.get_name(true) : isSwitch ? "" : option.get_type_name();
    text.meaning = option.get_description();
    text.required = option.get_required();
    text.repeated = option.get_expected_max() == CLI::detail::expected_max_vector_size;
    return text;
}

CommandText describe(const CLI::App& command) {
    CommandText text{command.get_name(), command.get_description(), {}, {}, command.get_footer()};
    for (const CLI::Option* option : command.get_options())
        (option->get_positional() ? text.arguments : text.options).push_back(describe(*option));
    return text;
}

std::vector<std::string> split(const std::string& text, char between) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, between);) parts.push_back(part);
    return parts;
}

}  // namespace

ProgramText describeCommandLine() {
    Request request;
    const CommandGrammar grammar(request);
    ProgramText text{describe(grammar.app()), {}};
    for (const CLI::App* command : grammar.app().get_subcommands([](const CLI::App*) { return true; }))
        text.commands.push_back(describe(*command));
    return text;
}

ValueText valueKind(const std::string& value) {
    if (value.starts_with("N=FILE")) return {ValueText::padFile, {}, ".wav"};
    if (value.find('|') != value.npos) return {ValueText::words, split(value, '|'), {}};
    if (value == "DIR") return {ValueText::folder, {}, {}};
    const std::string stem = value.substr(0, value.find('.'));
    if (stem == "FILE" || stem == "PROJECT") return {ValueText::file, {}, value.substr(stem.size())};
    return {};
}

}  // namespace marnoth
