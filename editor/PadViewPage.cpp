/// The Pad Editor view: sixteen pads as rows on a ruler of beats.

#include <algorithm>

#include "editor/GrainShape.h"
#include "editor/GrooveSamplerPropPage.h"
#include "editor/PadViewPaint.h"
#include "editor/PageLayout.h"
#include "platform/drawing/Surface.h"

namespace marnoth {

void CGrooveSamplerPropPage::updateScrollers() {
    m_padVertical.SetTrackPosition(m_timeScale.contentHeight(), m_padVertical.position(), -1);
    int total = kPadPlot.width();
    for (int pad = 0; pad < 16; ++pad) {
        const auto end = get(&IGrooveSampler::GetPadEndTime, std::int64_t{0}, pad);
        total = std::max(total, m_timeScale.contentWidth(std::max(end, loopLength(pad))));
    }
    m_padHorizontal.SetTrackPosition(total, m_padHorizontal.position(), -1);
}

void CGrooveSamplerPropPage::paintPadEditor(Surface& surface) {
    updateScrollers();
    const TimeScale scale = this->scale();
    surface.SelectClipRgn(kPadView);
    fillPadView(surface, scale);
    drawRuler(surface, scale, m_padHorizontal.total(), *m_smallFont);
    surface.SelectClipRgn(Rect{kPadView.left, kPadPlot.top, kPadView.right, kPadView.bottom});
    drawPadRows(surface, scale, m_hoverPad < 0 ? m_currentPad : m_hoverPad, *m_smallFont, *m_largeFont);
    surface.SelectClipRgn(kPadPlot);
    PadPlots ghosts;
    for (int pad = 0; pad < 16; ++pad) paintPadRow(surface, scale, pad, ghosts);
    if (m_grainDrag.active) paintGhosts(surface, ghosts);
    if (m_lengthDrag.active) {
        const Rect band = scale.grainBand(m_lengthDrag.pad);
        const int moved = m_lengthDrag.currentX - m_lengthDrag.press.x;
        drawLengthMarker(surface, scale.TickToPixel(loopLength(m_lengthDrag.pad)) + moved, band.top,
                         band.bottom);
    }
    surface.SelectClipRgn({});
    m_padHorizontal.paint(surface);
    m_padVertical.paint(surface);
}

void CGrooveSamplerPropPage::paintPadRow(Surface& surface, const TimeScale& scale, int pad,
                                         PadPlots& ghosts) {
    const GrainList grains = padGrains(pad);
    const Rect band = scale.grainBand(pad);
    if (!RectVisible(band)) return;
    const auto row = static_cast<std::size_t>(pad);
    m_padPlot[row] = plotGrains(scale, pad, grains.entries());
    paintGrains(surface, pad, ghosts[row]);
    if (m_lengthDrag.active && m_lengthDrag.pad == pad) return;
    const std::int64_t length = loopLength(pad);
    const int x = scale.TickToPixel(length);
    if (hasLengthMarker(length, !grains.entries().empty()) && scale.isInPlot(x))
        drawLengthMarker(surface, x, band.top, band.bottom);
}

void CGrooveSamplerPropPage::paintGrains(Surface& surface, int pad, EventPlot& ghosts) {
    const bool leavesPlace = !held().control;
    for (const EventPlotInfo& info : m_padPlot[static_cast<std::size_t>(pad)]) {
        const bool selected = m_selection.contains(pad, info.grain);
        if (m_grainDrag.active && selected) {
            ghosts.push_back(info);
            if (leavesPlace) continue;
        }
        const bool hovered = m_grainHover.active && !m_lengthDrag.active && m_grainHover.pad == pad &&
                             m_grainHover.grain == info.grain;
        const GrainState state = hovered    ? GrainState::hovered
                                 : selected ? GrainState::selected
                                            : GrainState::normal;
        drawGrain(surface, info.rect, info.tail != 0, state);
    }
}

void CGrooveSamplerPropPage::paintGhosts(Surface& surface, const PadPlots& ghosts) const {
    const int right = m_grainDrag.current.x - m_grainDrag.press.x;
    const int down = m_grainDrag.current.y - m_grainDrag.press.y;
    for (const EventPlot& row : ghosts)
        for (const EventPlotInfo& info : row)
            drawGrain(surface, info.rect.movedBy(right, down), info.tail != 0, GrainState::selected);
}

void CGrooveSamplerPropPage::zoomCommand(int id) {
    switch (id) {
        case kZoomIn:
            m_timeScale.zoomIn();
            break;
        case kZoomOut:
            m_timeScale.zoomOut();
            break;
        case kRowsHigher:
            m_timeScale.makeRowsHigher();
            break;
        default:
            m_timeScale.makeRowsLower();
    }
    const bool ofTime = id == kZoomIn || id == kZoomOut;
    invalidateView();
    invalidate((ofTime ? m_padHorizontal : m_padVertical).track());
}

}  // namespace marnoth
