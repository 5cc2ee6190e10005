#pragma once

#include <string>

#include "shells/cli/CommandText.h"

namespace marnoth {

/// The manual page of the program, for `man`.
std::string manualPage(const ProgramText& text);

}  // namespace marnoth
