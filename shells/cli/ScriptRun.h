#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>

namespace marnoth {

/// Runs a session script on an instrument of its own in a host without a clock, and with a page without a
/// screen. What is printed, given and thrown stands at `runScript`.
int runScriptFile(const std::string& scriptName, const std::filesystem::path& outputFolder,
                  std::ostream& transcript, std::ostream& errors);

}  // namespace marnoth
