#pragma once

#include "editor/BoundEngine.h"
#include "editor/padeditor/EventSelection.h"

namespace marnoth {

/// What the page and all its panes look at: the current pad and file, and what is selected. It is lost with
/// the page; everything else that is shown is read from the engine.
struct PageView {
    int currentPad = 0;
    int currentBinFile = -1;       ///< -1 for none
    CEventSelection selection;     ///< grains of pads
    CEventSelection binSelection;  ///< grains of the strip

    void clearSelections() {
        selection.clear();
        binSelection.clear();
    }
    /// The file that a grain was cut from becomes the current one, and the grain of it is selected alone.
    void makeSourceCurrent(const BoundEngine& engine, int pad, int grain) {
        std::int32_t file = -1;
        std::int32_t source = -1;
        engine.call(&IGrooveSampler::GetGrainSource, pad, grain, &file, &source);
        currentBinFile = file;
        binSelection.set(file, source);
    }
};

}  // namespace marnoth
