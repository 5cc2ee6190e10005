#pragma once

#include "editor/PaneParent.h"

namespace marnoth {

class ControlParent;
class FileCommands;
class PadStrips;

/// The menu of a pad. The page's thread.
class PadMenu {
public:
    /// What is chosen is posted to `commands`. All outlive it.
    PadMenu(PaneParent& page, ControlParent& commands, PadStrips& strips, FileCommands& files)
        : page_(page), commands_(commands), strips_(strips), files_(files) {}

    void ShowPadMenu(Point at, int pad);
    /// On the current pad. False when it is the command of another pane.
    bool command(int id);

private:
    void clearPad(int pad);

    PaneParent& page_;
    ControlParent& commands_;
    PadStrips& strips_;
    FileCommands& files_;
};

}  // namespace marnoth
