#include "shellkit/script/ScriptCommand.h"

#include <map>

#include "shellkit/script/ScriptWords.h"

namespace marnoth {

namespace {

std::vector<std::string> formNames(std::string_view form) {
    return splitWords(form);
}

using CommandTable = std::map<std::string_view, ScriptCommand>;

CommandTable makeTable() {
    CommandTable table;
    for (const auto& commands : {runnerCommands(), synthCommands(), samplerCommands(), pageCommands()})
        for (const ScriptCommand& command : commands) table.emplace(command.name, command);
    return table;
}

}  // namespace

void ScriptCommand::checkCount(std::size_t count) const {
    std::size_t least = 0;
    std::size_t most = 0;
    bool open = false;
    for (const std::string& name : formNames(form)) {
        if (name == "...") {
            open = true;
            if (least > 0) --least;
            continue;
        }
        ++most;
        if (!name.starts_with('[')) ++least;
    }
    if (count >= least && (open || count <= most)) return;
    std::string expected(name);
    if (!form.empty()) expected += " " + std::string(form);
    throw ScriptError((count < least ? "too few arguments: " : "too many arguments: ") + expected);
}

const ScriptCommand& findCommand(std::string_view name) {
    static const CommandTable table = makeTable();
    const auto found = table.find(name);
    if (found == table.end()) {
        constexpr std::size_t kMostShown = 40;
        throw ScriptError("unknown command \"" + std::string(name.substr(0, kMostShown)) + "\"");
    }
    return found->second;
}

std::string argumentName(std::string_view form, std::size_t index) {
    const std::vector<std::string> names = formNames(form);
    return index < names.size() ? names[index] : "the argument";
}

}  // namespace marnoth
