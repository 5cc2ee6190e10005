#include "editor/padeditor/GrainKeys.h"

#include <algorithm>

#include "editor/BoundEngine.h"
#include "editor/PageLayout.h"
#include "editor/PageView.h"
#include "editor/padeditor/GrainPanel.h"
#include "editor/padeditor/PadEditorPane.h"
#include "seam/Limits.h"

namespace marnoth {

bool GrainKeys::press(int key, Modifiers held, bool dragIsOpen) {
    switch (key) {
        case kKeyLeft:
        case kKeyUp:
        case kKeyRight:
        case kKeyDown:
            return arrow(key);
        case kKeyDelete:
            if (!dragIsOpen) deleteSelection();
            return !dragIsOpen;
        case kKeyZ:
        case kKeyF11:
            if (dragIsOpen || !held.control) return false;
            undo(held.shift);
            return true;
        case kKeyAdd:
            return transposeSelection(1);
        case kKeySubtract:
            return transposeSelection(-1);
        default:
            return false;
    }
}

bool GrainKeys::arrow(int key) {
    PageView& view = page_.view();
    if (view.selection.isEmpty() || view.selection.first().track >= kPads) return false;
    const EventSelectionInfo next = neighbour(key, view.selection.first());
    view.selection.set(next.track, next.grain);
    view.makeSourceCurrent(page_.engine(), next.track, next.grain);
    page_.RefreshGrainReadouts();
    page_.engine().call(&IGrooveSampler::AuditionPad, next.track, next.grain);
    editor_.invalidateAll();
    page_.invalidate(kStripPlot);
    page_.invalidate(kBinList);
    editor_.scrollToGrain(key, next.track, next.grain);
    return true;
}

EventSelectionInfo GrainKeys::neighbour(int key, const EventSelectionInfo& from) const {
    const BoundEngine& engine = page_.engine();
    const auto [pad, grain] = from;
    if (key == kKeyLeft) return {pad, std::max(grain - 1, 0)};
    if (key == kKeyRight) return {pad, std::max(std::min(grain + 1, engine.grainCount(pad) - 1), 0)};
    const int step = key == kKeyUp ? -1 : 1;
    for (int other = pad + step; other >= 0 && other < kPads; other += step)
        if (engine.grainCount(other) > 0) return {other, 0};
    return from;
}

void GrainKeys::deleteSelection() {
    const BoundEngine& engine = page_.engine();
    CEventSelection& selection = page_.view().selection;
    engine.call(&IGrooveSampler::PushUndoState);
    for (const auto& [pad, grain] : selection) engine.call(&IGrooveSampler::DeleteGrain, pad, grain, 1);
    engine.call(&IGrooveSampler::CommitGrainEdits);
    selection.clear();
    editor_.invalidateAll();
    page_.invalidate(kStripPlot);
}

void GrainKeys::undo(bool redo) {
    page_.view().clearSelections();
    page_.engine().call(redo ? &IGrooveSampler::Redo : &IGrooveSampler::Undo);
    page_.engine().requestRefresh();
}

bool GrainKeys::transposeSelection(int semitones) {
    const BoundEngine& engine = page_.engine();
    const CEventSelection& selection = page_.view().selection;
    if (selection.isEmpty()) return false;
    for (const auto& [pad, grain] : selection) {
        const int transpose = engine.get(&IGrooveSampler::GetGrainTranspose, std::int32_t{0}, pad, grain);
        panel_.SetGrainTransposeText(transpose + semitones, true);
    }
    const auto [pad, grain] = selection.first();
    engine.call(&IGrooveSampler::AuditionPad, pad, grain);
    return true;
}

}  // namespace marnoth
