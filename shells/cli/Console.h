#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace marnoth {

/// What differs between the consoles of the systems. Inside the program all text is UTF-8; the instrument's
/// narrow texts are in the system code page.

/// The program's arguments in UTF-8, without the program's name.
std::vector<std::string> consoleArguments(int argc, char** argv);

/// Puts the standard streams into the state that the program writes for: UTF-8, and lines that end with a
/// line feed alone, so that the same run prints the same bytes everywhere.
void prepareConsole();

/// Whether somebody watches standard error.
bool errorIsTerminal();

std::filesystem::path pathFromUtf8(std::string_view text);
std::string utf8FromPath(const std::filesystem::path& path);

/// Text for the instrument's narrow arguments, and back.
std::string toInstrument(std::string_view utf8);
std::string fromInstrument(std::string_view systemText);

}  // namespace marnoth
