#include "editor/gestures/GrainDrag.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include "editor/BoundEngine.h"
#include "editor/PageLayout.h"
#include "editor/PageView.h"
#include "editor/padeditor/PadEditorPane.h"
#include "seam/Limits.h"

namespace marnoth {

namespace {

/// For a time of a grain: it keeps its own.
constexpr std::int64_t kSameTime = -1;

}  // namespace

bool GrainDrag::isNearPress(Point at) const {
    constexpr int kDeadZone = 5;
    return std::abs(at.x - press_.x) < kDeadZone && std::abs(at.y - press_.y) < kDeadZone;
}

bool GrainDrag::press(Point at, Modifiers held) {
    const auto hit = editor_.HitTestGrain(at);
    if (!hit) return false;
    const auto& [pad, grain, corner] = *hit;
    PageView& view = page_.view();
    page_.SelectPad(pad);
    if (!held.shift && !view.selection.contains(pad, grain)) view.selection.clear();
    view.selection.add(pad, grain);
    page_.RefreshGrainReadouts();
    view.makeSourceCurrent(page_.engine(), pad, grain);
    // Only now: a grain that went since it was painted has ended the press before.
    setOpen(true);
    press_ = current_ = at;
    grab_ = {at.x - corner.x, at.y - corner.y};
    pad_ = pad;
    grain_ = grain;
    page_.engine().call(&IGrooveSampler::AuditionPad, pad, grain);
    for (const Rect& area : kGrainPlaces) page_.invalidate(area);
    return true;
}

void GrainDrag::move(Point at, Modifiers held) {
    if (isNearPress(at)) at = press_;
    window_.confinePointer(kPadPlot);
    current_.x = held.shift ? press_.x : editor_.snappedX(at.x, grab_.x);
    const TimeScale scale = editor_.scale();
    const int row = scale.rawRowOf(at.y);
    const int top = kPadView.contains(at) && row <= kPads ? scale.topOf(row) : at.y;
    current_.y = top + grab_.y;
    editor_.invalidateAll();
}

void GrainDrag::release(Point at, Modifiers held) {
    setOpen(false);
    editor_.invalidateAll();
    const auto row = editor_.HitTestRow(at);
    if (!row || isNearPress(at)) return;
    page_.SelectPad(row->pad);
    const std::int64_t delta = editor_.snappedTick(at.x, grab_.x) - editor_.plotted(pad_, grain_).start;
    page_.engine().call(&IGrooveSampler::PushUndoState);
    try {
        moveSelection(row->pad - pad_, delta, held);
    } catch (const std::invalid_argument&) {
        // A file laid on a pad leaves grains selected that are gone: those before them have moved all the
        // same.
    }
    page_.view().selection.clear();
    page_.engine().call(&IGrooveSampler::CommitGrainEdits);
    page_.SyncLoopToggles(row->pad);
}

void GrainDrag::moveSelection(int padsDown, std::int64_t delta, Modifiers held) {
    const BoundEngine& engine = page_.engine();
    std::int32_t newIndex = -1;
    for (const auto& [pad, grain] : page_.view().selection) {
        // The group keeps its shape and folds onto the first or the last pad.
        const int to = std::clamp(pad + padsDown, 0, kPads - 1);
        const std::int64_t time = held.shift ? kSameTime : editor_.plotted(pad, grain).start + delta;
        if (held.control)
            engine.call(&IGrooveSampler::CopyGrain, pad, grain, to, time, &newIndex);
        else
            // Only marked: the indices of the selection must stay good until all have moved.
            engine.call(&IGrooveSampler::MoveGrain, pad, grain, to, time, &newIndex, 1);
    }
}

}  // namespace marnoth
