#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/drawing/FileChooser.h"

namespace marnoth {

/// The command that shows a dialog of files by zenity or kdialog: words, the program first. `window` is the
/// number of the window to stand before. Empty for other programs.
std::vector<std::string> dialogCommand(std::string_view program, const FileQuestion& question,
                                       unsigned long window);

/// The first of zenity and kdialog in the search path `path`; empty without one.
std::string findDialogProgram(std::string_view path);

}  // namespace marnoth
