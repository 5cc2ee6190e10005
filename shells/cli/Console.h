#pragma once

#include <string>
#include <vector>

namespace marnoth {

/// What differs between the consoles of the systems. Inside the program all text is UTF-8.

/// The program's arguments in UTF-8, without the program's name.
std::vector<std::string> consoleArguments(int argc, char** argv);

/// Puts the standard streams into the state that the program writes for: UTF-8, and lines that end with a
/// line feed alone, so that the same run prints the same bytes everywhere.
void prepareConsole();

/// Whether somebody watches standard error.
bool errorIsTerminal();

}  // namespace marnoth
