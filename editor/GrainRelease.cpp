/// What a release of the left button does with what was dragged.

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>

#include "editor/GrooveSamplerPropPage.h"
#include "editor/PageLayout.h"

namespace marnoth {

namespace {

/// For a time of a grain: it keeps its own.
constexpr std::int64_t kSameTime = -1;

}  // namespace

void CGrooveSamplerPropPage::released(Point at) {
    window().confinePointer({});
    releaseMouse();
    if (m_hoverPad >= 0 && m_hoverPad != m_currentPad) invalidateView();
    m_hoverPad = -1;
    m_heldPad = -1;
    if (!std::exchange(m_mouseDown, false)) return;
    guarded([&] { finishGesture(at); });
    dragScrollers(at);
    for (const auto& [scroller, served] : scrollers()) scroller->endDrag();
    // The next move may be over a control, which leaves the cursor as it is.
    window().setCursor(PageCursor::arrow);
    focus(&m_controls.toggle(kBinPlay));
}

void CGrooveSamplerPropPage::finishGesture(Point at) {
    if (m_grainDrag.active) return releaseGrains(at);
    if (m_lengthDrag.active) return releaseLength(at);
    if (std::exchange(m_draggingKeyMap, false)) return m_keyMapEditor.endDrag();
    if (m_draggingBinFile) return releaseBinFile(at);
    if (m_draggingBinGrain) return releaseBinGrain(at);
    releasePress(at);
}

void CGrooveSamplerPropPage::dropGesture() {
    window().confinePointer({});
    // Its release won't come: a loop would play on.
    if (m_heldPad >= 0) call(&IGrooveSampler::StopPad, std::exchange(m_heldPad, -1));
    m_hoverPad = -1;
    m_mouseDown = false;
    m_grainDrag.active = false;
    m_lengthDrag.active = false;
    m_draggingKeyMap = false;
    m_keyMapEditor.endDrag();
    m_draggingBinFile = false;
    if (std::exchange(m_draggingBinGrain, false)) endReplacing();
    for (const auto& [scroller, served] : scrollers()) scroller->endDrag();
    window().setCursor(PageCursor::arrow);
}

void CGrooveSamplerPropPage::gestureLost() {
    dropGesture();
    invalidateGrainPlaces();
}

const EventPlotInfo& CGrooveSamplerPropPage::plotted(int pad, int grain) const {
    const auto row = static_cast<std::size_t>(pad);
    const auto entry = static_cast<std::size_t>(grain);
    if (pad < 0 || row >= m_padPlot.size() || grain < 0 || entry >= m_padPlot[row].size())
        throw std::invalid_argument("no such grain was painted");
    return m_padPlot[row][entry];
}

void CGrooveSamplerPropPage::releaseGrains(Point at) {
    const GrainDrag drag = std::exchange(m_grainDrag, {});
    invalidateDrag();
    int row = -1;
    bool onLabel = false;
    if (!scale().HitTestRow(at, &row, &onLabel) || drag.isNearPress(at)) return;
    SelectPad(row);
    const std::int64_t delta = snappedTick(at.x, drag.grab.x) - plotted(drag.pad, drag.grain).start;
    call(&IGrooveSampler::PushUndoState);
    // A file laid on a pad leaves grains selected that are gone: those before them have moved all the same.
    guarded([&] { moveSelection(row - drag.pad, delta); });
    m_selection.clear();
    call(&IGrooveSampler::CommitGrainEdits);
    SyncLoopToggles(row);
}

void CGrooveSamplerPropPage::moveSelection(int padsDown, std::int64_t delta) {
    const bool copies = held().control;
    const bool keepsTime = held().shift;
    std::int32_t newIndex = -1;
    for (const auto& [pad, grain] : m_selection) {
        // The group keeps its shape and folds onto the first or the last pad.
        const int to = std::clamp(pad + padsDown, 0, 15);
        const std::int64_t time = keepsTime ? kSameTime : plotted(pad, grain).start + delta;
        if (copies)
            call(&IGrooveSampler::CopyGrain, pad, grain, to, time, &newIndex);
        else
            // Only marked: the indices of the selection must stay good until all have moved.
            call(&IGrooveSampler::MoveGrain, pad, grain, to, time, &newIndex, 1);
    }
}

void CGrooveSamplerPropPage::releaseLength(Point at) {
    const LengthDrag drag = std::exchange(m_lengthDrag, {});
    call(&IGrooveSampler::PushUndoState);
    call(&IGrooveSampler::SetLoopLength, kPadLoop, drag.pad, snappedTick(at.x, drag.grabX));
    invalidateDrag();
}

void CGrooveSamplerPropPage::releasePress(Point at) {
    const auto hit = HitTestPad(at);
    if (!hit || !hit->onImage) return;
    call(&IGrooveSampler::StopPad, hit->pad);
    if (hit->pad != m_currentPad) SelectPad(hit->pad);
}

void CGrooveSamplerPropPage::endReplacing() {
    GrainHover& hover = m_grainHover;
    if (hover.replaced) {
        m_currentBinFile = hover.savedFile;
        m_binSelection.set(hover.savedFile, hover.savedGrain);
        invalidate(kStripPlot);
    }
    hover.active = false;
    hover.replaced = false;
}

void CGrooveSamplerPropPage::releaseBinGrain(Point at) {
    endReplacing();
    m_draggingBinGrain = false;
    int row = -1;
    bool onLabel = false;
    if (const auto hit = HitTestGrain(at))
        replaceGrain(*hit);
    else if (scale().HitTestRow(at, &row, &onLabel))
        addBinGrains(at, row, onLabel);
}

void CGrooveSamplerPropPage::replaceGrain(const GrainHit& hit) {
    call(&IGrooveSampler::PushUndoState);
    if (!m_binSelection.isEmpty()) {
        const auto [file, grain] = m_binSelection.first();
        call(&IGrooveSampler::ReplaceGrain, hit.pad, hit.grain, file, grain);
    }
    m_selection.set(hit.pad, hit.grain);
    SelectPad(hit.pad);
    call(&IGrooveSampler::AuditionPad, hit.pad, hit.grain);
}

void CGrooveSamplerPropPage::addBinGrains(Point at, int row, bool onLabel) {
    const std::int64_t dropped = snappedTick(at.x, 0);
    const GrainList list = binGrains(m_currentBinFile);
    const auto startOf = [&](int grain) {
        const auto index = static_cast<std::size_t>(grain);
        if (grain < 0 || index >= list.entries().size()) throw std::invalid_argument("no such grain");
        return list.entries()[index].startTicks;
    };
    std::int64_t base = std::numeric_limits<std::int64_t>::max();
    for (const auto& info : m_binSelection) base = std::min(base, startOf(info.grain));
    call(&IGrooveSampler::PushUndoState);
    for (const auto& [file, grain] : m_binSelection) {
        // On the pad's name grains keep the place that they have in their file.
        const std::int64_t time = onLabel ? startOf(grain) : startOf(grain) - base + dropped;
        call(&IGrooveSampler::AddGrain, file, grain, row, time);
    }
    SelectPad(row);
    requestRefresh();
}

}  // namespace marnoth
