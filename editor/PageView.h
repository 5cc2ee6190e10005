#pragma once

#include <algorithm>

#include "editor/BoundEngine.h"
#include "editor/KeptView.h"
#include "editor/padeditor/EventSelection.h"
#include "seam/Limits.h"

namespace marnoth {

/// What the page and all its panes look at: the current pad and file, and what is selected. It is lost with
/// the page, unless its shell keeps it; everything else that is shown is read from the engine.
struct PageView {
    int currentPad = 0;
    int currentBinFile = -1;       ///< -1 for none
    CEventSelection selection;     ///< grains of pads
    CEventSelection binSelection;  ///< grains of the strip

    void clearSelections() {
        selection.clear();
        binSelection.clear();
    }
    /// What of a former view the engine has.
    void show(const KeptView& kept, const BoundEngine& engine) {
        currentPad = std::clamp(kept.currentPad, 0, kPads - 1);
        currentBinFile = std::clamp(kept.currentBinFile, -1, engine.binFileCount() - 1);
        clearSelections();
        for (const EventSelectionInfo& grain : kept.selection)
            if (grain.track >= 0 && grain.track < kPads && grain.grain >= 0 &&
                grain.grain < engine.grainCount(grain.track))
                selection.add(grain.track, grain.grain);
        if (currentBinFile < 0) return;
        const auto inFile = engine.binGrains(currentBinFile).entries().size();
        for (const EventSelectionInfo& grain : kept.binSelection)
            if (grain.track == currentBinFile && grain.grain >= 0 &&
                static_cast<std::size_t>(grain.grain) < inFile)
                binSelection.add(grain.track, grain.grain);
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
