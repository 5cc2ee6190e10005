#pragma once

#include <vector>

#include "editor/padeditor/EventSelection.h"
#include "platform/drawing/Geometry.h"

namespace marnoth {

/// How a user has left a page, for shells that show it so again. The project is as it was then, or another:
/// of what it hasn't got nothing is shown.
struct KeptView {
    int currentPad = 0;
    int currentBinFile = -1;  ///< -1 for none
    std::vector<EventSelectionInfo> selection;
    std::vector<EventSelectionInfo> binSelection;
    // Of the Pad Editor, as in `TimeScale`.
    double pixelsPerBeat = 54.0;
    int rowHeight = 10;
    int snapIndex = 6;
    Point editorPosition;  ///< what is scrolled out at the left and above, pixels
    Point binPosition;     ///< the same of the Loop Bin
    bool showsKeyMap = false;

    friend bool operator==(const KeptView&, const KeptView&) = default;
};

}  // namespace marnoth
