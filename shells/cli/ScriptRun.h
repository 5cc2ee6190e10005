#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>

namespace marnoth {

/// What a script plays.
enum class Playing {
    ownInstrument,  ///< the program's own, in the host kit's graph
    component,      ///< the registered one, in the system's graph; on Windows
};

/// Runs a session script on an instrument of its own in a host without a clock, and with a page without a
/// screen. What is printed, given and thrown stands at `runScript`; and `FileFailure` where there is no
/// component to play.
int runScriptFile(const std::string& scriptName, const std::filesystem::path& outputFolder,
                  std::ostream& transcript, std::ostream& errors, Playing what = Playing::ownInstrument);

}  // namespace marnoth
