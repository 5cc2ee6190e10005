/// What lies under the pointer, and what a press of the left button takes hold of.

#include <cstdlib>

#include "editor/GrooveSamplerPropPage.h"
#include "editor/PageLayout.h"

namespace marnoth {

std::optional<CGrooveSamplerPropPage::PadHit> CGrooveSamplerPropPage::HitTestPad(Point at) const {
    if (!kPadBlock.contains(at)) return {};
    for (int pad = 0; pad < 16; ++pad)
        if (padImage(pad).contains(at)) return PadHit{pad, true};
    const int column = (at.x - kPadBlock.left) * 4 / kPadBlock.width();
    const int row = (at.y - kPadBlock.top) * 4 / kPadBlock.height();
    return PadHit{column + 4 * row, false};
}

std::optional<CGrooveSamplerPropPage::GrainHit> CGrooveSamplerPropPage::HitTestGrain(Point at) const {
    if (!kPadView.contains(at)) return {};
    const TimeScale scale = this->scale();
    const int row = scale.rowOf(at.y);
    if (row < 0) return {};
    const EventPlot& plot = m_padPlot[static_cast<std::size_t>(row)];
    if (plot.empty()) return {};
    const int guess =
        guessGrain(scale.PixelToTick(at.x), loopLength(row), static_cast<std::int32_t>(plot.size()));
    const int hit = hitPlot(plot, guess, at.x);
    if (hit < 0) return {};
    const EventPlotInfo& info = plot[static_cast<std::size_t>(hit)];
    return GrainHit{row, info.grain, {info.rect.left, info.rect.top - scale.GrainMargin()}};
}

bool CGrooveSamplerPropPage::HitTestStrip(Point at) {
    if (!kStripPlot.contains(at)) return false;
    if (m_showKeyMap) {
        int note = 0;
        return m_keyMapEditor.OnKeyMapPress(at, keyMapEntry(), &note, &m_draggingKeyMap);
    }
    for (const EventPlotInfo& info : m_binPlot) {
        if (!info.rect.contains(at)) continue;
        if (!held().shift) m_binSelection.clear();
        m_binSelection.add(m_currentBinFile, info.grain);
        m_draggingBinGrain = true;
        call(&IGrooveSampler::AuditionBinFile, m_currentBinFile, info.grain);
        return true;
    }
    return false;
}

bool CGrooveSamplerPropPage::HitTestViewTab(Point at) {
    const bool keyMap = kKeyMapTab.contains(at);
    if (!keyMap && !kWaveformTab.contains(at)) return false;
    m_showKeyMap = keyMap;
    return true;
}

void CGrooveSamplerPropPage::makeSourceCurrent(int pad, int grain) {
    std::int32_t file = -1;
    std::int32_t source = -1;
    call(&IGrooveSampler::GetGrainSource, pad, grain, &file, &source);
    m_currentBinFile = file;
    m_binSelection.set(file, source);
}

void CGrooveSamplerPropPage::pressed(Point at) {
    captureForPage();
    m_mouseDown = true;
    pressByPlace(at);
    int row = -1;
    bool onLabel = false;
    if (scale().HitTestRow(at, &row, &onLabel)) SelectPad(row);
    m_hoverPad = m_currentPad;
}

void CGrooveSamplerPropPage::pressByPlace(Point at) {
    if (pressPadBlock(at) || pressLengthMarker(at) || pressGrain(at)) return;
    if (HitTestStrip(at)) return invalidate(kStripPanel);
    if (pressScroller(at) || pressBinRow(at)) return;
    if (HitTestViewTab(at)) return invalidate(kStripPanel);
    pressElsewhere(at);
}

bool CGrooveSamplerPropPage::pressPadBlock(Point at) {
    const auto hit = HitTestPad(at);
    if (!hit) return false;
    if (hit->onImage) {
        m_heldPad = hit->pad;
        call(&IGrooveSampler::AuditionPad, hit->pad, -1);
    }
    if (hit->pad != m_currentPad) SelectPad(hit->pad);
    return true;
}

bool CGrooveSamplerPropPage::pressLengthMarker(Point at) {
    const TimeScale scale = this->scale();
    int pad = -1;
    bool onLabel = false;
    if (!scale.HitTestRow(at, &pad, &onLabel) || m_padPlot[static_cast<std::size_t>(pad)].empty())
        return false;
    const int marker = scale.TickToPixel(loopLength(pad));
    if (std::abs(at.x - marker - 5) >= 4) return false;
    m_lengthDrag = {true, at, at.x, at.x - marker, pad};
    return true;
}

bool CGrooveSamplerPropPage::pressGrain(Point at) {
    const auto hit = HitTestGrain(at);
    if (!hit) return false;
    const auto& [pad, grain, corner] = *hit;
    SelectPad(pad);
    if (!held().shift && !m_selection.contains(pad, grain)) m_selection.clear();
    m_selection.add(pad, grain);
    RefreshGrainReadouts();
    makeSourceCurrent(pad, grain);
    // Only now: a grain that went since it was painted has ended the press before.
    m_grainDrag = {true, at, at, {at.x - corner.x, at.y - corner.y}, pad, grain};
    call(&IGrooveSampler::AuditionPad, pad, grain);
    invalidateGrainPlaces();
    return true;
}

bool CGrooveSamplerPropPage::pressScroller(Point at) {
    for (const auto& [scroller, served] : scrollers()) {
        if (!scroller->BeginThumbDrag(at)) continue;
        invalidate(scroller->track());
        invalidate(served);
        return true;
    }
    return false;
}

void CGrooveSamplerPropPage::pressElsewhere(Point at) {
    if (!held().shift && kPadPlot.contains(at)) m_selection.clear();
    invalidateView();
}

void CGrooveSamplerPropPage::doubleClicked(Point at) {
    m_mouseDown = true;
    int row = -1;
    bool onLabel = false;
    const auto hit = HitTestPad(at);
    if (hit && hit->onImage) {
        call(&IGrooveSampler::AuditionPad, hit->pad, -1);
        SelectPad(hit->pad);
    } else if (scale().HitTestRow(at, &row, &onLabel)) {
        SelectPad(row);
        if (onLabel) {
            m_selection.clear();
            const int count = grainCount(row);
            for (int grain = 0; grain < count; ++grain) m_selection.add(row, grain);
        }
    }
    invalidateGrainPlaces();
}

}  // namespace marnoth
