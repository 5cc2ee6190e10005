#pragma once

namespace marnoth {

/// What the user is told who asks the plug-in's page for help.
inline constexpr const char* kPageKeysHelp =
    "Loops go onto pads and into the Loop Bin by their buttons and menus, and where the host allows it by "
    "dropping them.\n \n"
    "Ctrl+Z, Ctrl+Shift+Z: undo, redo\n"
    "Of selected grains: arrows walk, + and - transpose, Delete deletes\n \n"
    "Space and all other keys are the host's, whose session keeps everything.";

}  // namespace marnoth
