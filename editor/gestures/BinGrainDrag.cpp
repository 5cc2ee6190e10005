#include "editor/gestures/BinGrainDrag.h"

#include <algorithm>
#include <limits>

#include "editor/BoundEngine.h"
#include "editor/PageLayout.h"
#include "editor/PageView.h"
#include "editor/padeditor/PadEditorPane.h"
#include "editor/strip/StripPane.h"

namespace marnoth {

bool BinGrainDrag::press(Point at, Modifiers held) {
    const auto grain = strip_.grainAt(at);
    if (!grain) return false;
    PageView& view = page_.view();
    if (!held.shift) view.binSelection.clear();
    view.binSelection.add(view.currentBinFile, *grain);
    setOpen(true);
    page_.engine().call(&IGrooveSampler::AuditionBinFile, view.currentBinFile, *grain);
    page_.invalidate(kStripPanel);
    return true;
}

void BinGrainDrag::showReplaced(const GrainHit& hit) {
    PageView& view = page_.view();
    if (!before_)
        before_ =
            Shown{view.currentBinFile, view.binSelection.isEmpty() ? -1 : view.binSelection.first().grain};
    view.makeSourceCurrent(page_.engine(), hit.pad, hit.grain);
    page_.invalidate(kStripPlot);
    page_.engine().call(&IGrooveSampler::AuditionPad, hit.pad, hit.grain);
}

void BinGrainDrag::endReplacing() {
    if (before_) {
        page_.view().currentBinFile = before_->file;
        page_.view().binSelection.set(before_->file, before_->grain);
        page_.invalidate(kStripPlot);
    }
    before_.reset();
    editor_.forgetHover();
}

void BinGrainDrag::drop() {
    if (isOpen()) endReplacing();
    setOpen(false);
}

void BinGrainDrag::release(Point at, Modifiers) {
    drop();
    if (const auto hit = editor_.HitTestGrain(at)) return replaceGrain(*hit);
    if (const auto row = editor_.HitTestRow(at)) addGrains(at, row->pad, row->onLabel);
}

void BinGrainDrag::replaceGrain(const GrainHit& hit) {
    const BoundEngine& engine = page_.engine();
    PageView& view = page_.view();
    engine.call(&IGrooveSampler::PushUndoState);
    if (!view.binSelection.isEmpty()) {
        const auto [file, grain] = view.binSelection.first();
        engine.call(&IGrooveSampler::ReplaceGrain, hit.pad, hit.grain, file, grain);
    }
    view.selection.set(hit.pad, hit.grain);
    page_.SelectPad(hit.pad);
    engine.call(&IGrooveSampler::AuditionPad, hit.pad, hit.grain);
}

void BinGrainDrag::addGrains(Point at, int row, bool onLabel) {
    const BoundEngine& engine = page_.engine();
    const PageView& view = page_.view();
    const std::int64_t dropped = editor_.snappedTick(at.x, 0);
    const FetchedGrains list = engine.binGrains(view.currentBinFile);
    std::int64_t base = std::numeric_limits<std::int64_t>::max();
    for (const auto& info : view.binSelection) base = std::min(base, list.startOf(info.grain));
    engine.call(&IGrooveSampler::PushUndoState);
    for (const auto& [file, grain] : view.binSelection) {
        // On the pad's name grains keep the place that they have in their file.
        const std::int64_t time = onLabel ? list.startOf(grain) : list.startOf(grain) - base + dropped;
        engine.call(&IGrooveSampler::AddGrain, file, grain, row, time);
    }
    page_.SelectPad(row);
    engine.requestRefresh();
}

}  // namespace marnoth
