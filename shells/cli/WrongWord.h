#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace marnoth {

/// A sentence about arguments that a grammar has refused for `reason`: which word it doesn't know, with the
/// command or option that was most likely meant, and else the reason, with how to ask for help.
std::string tellWrongWord(const CLI::App& app, const std::vector<std::string>& arguments,
                          const std::string& reason);

}  // namespace marnoth
