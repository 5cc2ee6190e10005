#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>

#include "shellkit/script/ScriptSession.h"

namespace marnoth {

/// Runs a session script on a stage that nothing was done with yet: each line that holds a command is carried
/// out and its line of the transcript written to `transcript`. A line that can't be understood ends the run
/// with `NAME:LINE: reason` on `errors`; what was rendered up to there is still written to `outputFolder`,
/// which is made when it is missing.
///
/// Gives the exit status: 0, or 2 for a line that can't be understood. Throws `FileFailure` when the script
/// can't be read or audio can't be written.
int runScript(const ScriptStage& stage, const std::string& scriptName,
              const std::filesystem::path& outputFolder, std::ostream& transcript, std::ostream& errors);

}  // namespace marnoth
