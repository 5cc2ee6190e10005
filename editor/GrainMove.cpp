/// Moves of the mouse: drags go on, and the grain under the pointer lights up.

#include <array>

#include "editor/GrooveSamplerPropPage.h"
#include "editor/PageLayout.h"

namespace marnoth {

std::int64_t CGrooveSamplerPropPage::snappedTick(int x, int grabX) const {
    const TimeScale scale = this->scale();
    return scale.SnapTick(scale.PixelToTick(x - grabX));
}

void CGrooveSamplerPropPage::moved(Point at) {
    if (m_draggingBinGrain || m_draggingBinFile || m_grainDrag.active) {
        int row = -1;
        bool onLabel = false;
        if (scale().HitTestRow(at, &row, &onLabel)) m_hoverPad = row;
        invalidateView();
    }
    if (m_grainDrag.active)
        dragGrain(at);
    else if (m_lengthDrag.active)
        dragLength(at);
    else if (m_draggingKeyMap)
        dragKeyMap(at);
    hoverGrains(at);
    dragScrollers(at);
    const bool carries = m_draggingBinGrain || m_draggingBinFile;
    window().setCursor(carries ? PageCursor::dragCopy : PageCursor::arrow);
}

void CGrooveSamplerPropPage::invalidateDrag() {
    invalidateView();
    invalidate(m_padHorizontal.track());
    invalidate(m_padVertical.track());
}

void CGrooveSamplerPropPage::dragGrain(Point at) {
    GrainDrag& drag = m_grainDrag;
    if (drag.isNearPress(at)) at = drag.press;
    window().confinePointer(kPadPlot);
    const TimeScale scale = this->scale();
    drag.current.x =
        held().shift ? drag.press.x : scale.TickToPixel(snappedTick(at.x, drag.grab.x)) + drag.grab.x;
    const int row = scale.rawRowOf(at.y);
    const int top = kPadView.contains(at) && row < 17 ? scale.topOf(row) : at.y;
    drag.current.y = top + drag.grab.y;
    invalidateDrag();
}

void CGrooveSamplerPropPage::dragLength(Point at) {
    window().confinePointer(kPadPlot);
    const int grabX = m_lengthDrag.grabX;
    m_lengthDrag.currentX = scale().TickToPixel(snappedTick(at.x, grabX)) + grabX;
    invalidateDrag();
}

void CGrooveSamplerPropPage::dragKeyMap(Point at) {
    KeyMapRecord entry = keyMapEntry();
    m_keyMapEditor.OnKeyMapDrag(at, held().shift, &entry);
    call(&IGrooveSampler::SetKeyMapEntry, &entry);
    invalidate(kStripPanel);
    showKeyMapEntry(entry);
}

void CGrooveSamplerPropPage::hoverGrains(Point at) {
    GrainHover& hover = m_grainHover;
    if (const auto hit = HitTestGrain(at)) return hoverOver(*hit);
    if (!hover.active) return;
    invalidateRow(hover.pad);
    hover.active = false;
    hover.pad = -1;
    hover.grain = -1;
}

void CGrooveSamplerPropPage::hoverOver(const GrainHit& hit) {
    GrainHover& hover = m_grainHover;
    const bool isOther = !hover.active || hover.pad != hit.pad || hover.grain != hit.grain;
    if (m_draggingBinGrain && isOther) showReplaced(hit);
    if (isOther) {
        if (hover.active) invalidateRow(hover.pad);
        invalidateRow(hit.pad);
    }
    hover.active = true;
    hover.pad = hit.pad;
    hover.grain = hit.grain;
}

void CGrooveSamplerPropPage::showReplaced(const GrainHit& hit) {
    GrainHover& hover = m_grainHover;
    if (!hover.replaced) {
        hover.savedFile = m_currentBinFile;
        hover.savedGrain = m_binSelection.isEmpty() ? -1 : m_binSelection.first().grain;
    }
    hover.replaced = true;
    makeSourceCurrent(hit.pad, hit.grain);
    invalidate(kStripPlot);
    call(&IGrooveSampler::AuditionPad, hit.pad, hit.grain);
}

std::array<CGrooveSamplerPropPage::ServingScroller, 4> CGrooveSamplerPropPage::scrollers() {
    return {{{&m_padHorizontal, kPadView},
             {&m_padVertical, kPadView},
             {&m_binVertical, kBinList},
             {&m_binHorizontal, kBinList}}};
}

bool CGrooveSamplerPropPage::dragScrollers(Point at) {
    for (const auto& [scroller, served] : scrollers()) {
        if (!scroller->isDragging()) continue;
        scroller->dragTo(at);
        invalidate(scroller->track());
        invalidate(served);
        return true;
    }
    return false;
}

}  // namespace marnoth
