#pragma once

#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "shellkit/script/ScriptNumbers.h"
#include "shellkit/script/ScriptSession.h"

namespace marnoth {

/// The words behind a command's name.
using Arguments = std::span<const std::string>;

/// One command of the script language.
struct ScriptCommand {
    std::string_view name;
    /// Names of the arguments, separated by blanks, for the messages. A last `...` says that the one before
    /// it may come any number of times, also none; names in brackets may be left out.
    std::string_view form;
    /// Carries the command out and gives what stands behind the arrow of the transcript. The number of the
    /// arguments has been checked. Throws `ScriptError` for arguments of the wrong kind.
    std::function<std::string(ScriptSession&, Arguments)> run;

    /// Throws `ScriptError` when `count` arguments are too many or too few.
    void checkCount(std::size_t count) const;
};

/// The runner's own commands.
std::vector<ScriptCommand> runnerCommands();
/// The operations of the soft synth.
std::vector<ScriptCommand> synthCommands();
/// The operations of the control surface.
std::vector<ScriptCommand> samplerCommands();
/// The user at the editor page.
std::vector<ScriptCommand> pageCommands();

/// The command of that name. Throws `ScriptError` when there is none.
const ScriptCommand& findCommand(std::string_view name);

/// The result of a call, or that it raised the invalid-argument exception.
template <class Call>
std::string resultOf(Call call) {
    try {
        return printResult(call());
    } catch (const std::invalid_argument&) {
        return "exception";
    }
}

/// The argument's name in a command's form; "the argument" behind its end.
std::string argumentName(std::string_view form, std::size_t index);

}  // namespace marnoth
