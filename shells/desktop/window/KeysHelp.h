#pragma once

namespace marnoth {

/// What the user is told who asks for help: which keys do what.
inline constexpr const char* kKeysHelp =
    "Keys of the pads:\n1 2 3 4\nQ W E R\nA S D F\nZ X C V\n \n"
    "Space: play, stop\n"
    "Ctrl+N, Ctrl+O, Ctrl+S: new, open, save\n"
    "Ctrl+Z, Ctrl+Shift+Z: undo, redo\n"
    "Of selected grains: arrows walk, + and - transpose, Delete deletes\n \n"
    "A loop is dragged onto a pad, a project or MIDI file anywhere. The menu at the top left opens and saves "
    "them. More is in the manual: man marnoth.";

}  // namespace marnoth
