#pragma once

#include <string>

#include "shells/cli/CommandText.h"

namespace marnoth {

/// Scripts by which shells complete commands, options and values of the program.
std::string bashCompletion(const ProgramText& text);
std::string zshCompletion(const ProgramText& text);
std::string fishCompletion(const ProgramText& text);

}  // namespace marnoth
