/// Keys: they reach the page through whichever bitmap control has the keyboard.

#include <algorithm>
#include <stdexcept>

#include "editor/GrooveSamplerPropPage.h"
#include "editor/PageLayout.h"
#include "editor/Truncate.h"

namespace marnoth {

bool CGrooveSamplerPropPage::keyPressed(int key) {
    switch (key) {
        case kKeyLeft:
        case kKeyUp:
        case kKeyRight:
        case kKeyDown:
            return arrow(key);
        case kKeyDelete:
            return deleteSelection();
        case kKeyZ:
        case kKeyF11:
            return undoOrRedo();
        case kKeyAdd:
            return transposeSelection(1);
        case kKeySubtract:
            return transposeSelection(-1);
        case kKeyF1:
            showHelp();
            return true;
        default:
            return false;
    }
}

bool CGrooveSamplerPropPage::isDragOpen() const {
    return m_draggingKeyMap || m_draggingBinFile || m_draggingBinGrain || m_grainDrag.active;
}

bool CGrooveSamplerPropPage::arrow(int key) {
    if (m_selection.isEmpty() || m_selection.first().track > 15) return false;
    const EventSelectionInfo next = neighbour(key, m_selection.first());
    m_selection.set(next.track, next.grain);
    makeSourceCurrent(next.track, next.grain);
    RefreshGrainReadouts();
    call(&IGrooveSampler::AuditionPad, next.track, next.grain);
    invalidateDrag();
    invalidate(kStripPlot);
    invalidate(kBinList);
    scrollToGrain(key, next);
    return true;
}

EventSelectionInfo CGrooveSamplerPropPage::neighbour(int key, const EventSelectionInfo& from) const {
    const auto [pad, grain] = from;
    if (key == kKeyLeft) return {pad, std::max(grain - 1, 0)};
    if (key == kKeyRight) return {pad, std::max(std::min(grain + 1, grainCount(pad) - 1), 0)};
    const int step = key == kKeyUp ? -1 : 1;
    for (int other = pad + step; other >= 0 && other < 16; other += step)
        if (grainCount(other) > 0) return {other, 0};
    return from;
}

void CGrooveSamplerPropPage::scrollToGrain(int key, const EventSelectionInfo& grain) {
    const Rect rect = plotted(grain.track, grain.grain).rect;
    const GrainList grains = padGrains(grain.track);
    const auto index = static_cast<std::size_t>(grain.grain);
    if (index >= grains.entries().size()) throw std::invalid_argument("no such grain");
    const double beats = static_cast<double>(grains.entries()[index].startTicks) / kTicks16PerBeat;
    const int x = truncateToPixel(beats * m_timeScale.pixelsPerBeat + 0.5) - 12;
    const int position = m_padHorizontal.position();
    const bool isLeft = rect.right < kPadPlot.left + 2;
    const bool isRight = rect.left > kPadPlot.right - 2;
    const auto scrollTo = [&](int to) { m_padHorizontal.SetTrackPosition(-1, to, -1); };
    if (key == kKeyLeft && isLeft) return scrollTo(std::min(x, position - kPadPlot.width() + 12));
    if (key == kKeyRight && isRight) return scrollTo(std::max(x, position + kPadPlot.width() - 12));
    if ((key == kKeyUp || key == kKeyDown) && (isLeft || isRight)) scrollTo(x);
}

bool CGrooveSamplerPropPage::deleteSelection() {
    if (isDragOpen()) return false;
    call(&IGrooveSampler::PushUndoState);
    for (const auto& [pad, grain] : m_selection) call(&IGrooveSampler::DeleteGrain, pad, grain, 1);
    call(&IGrooveSampler::CommitGrainEdits);
    m_selection.clear();
    invalidateDrag();
    invalidate(kStripPlot);
    return true;
}

bool CGrooveSamplerPropPage::undoOrRedo() {
    if (isDragOpen() || !held().control) return false;
    clearSelections();
    call(held().shift ? &IGrooveSampler::Redo : &IGrooveSampler::Undo);
    requestRefresh();
    return true;
}

bool CGrooveSamplerPropPage::transposeSelection(int semitones) {
    if (m_selection.isEmpty()) return false;
    for (const auto& [pad, grain] : m_selection) {
        const int transpose = get(&IGrooveSampler::GetGrainTranspose, std::int32_t{0}, pad, grain);
        SetGrainTransposeText(transpose + semitones, true);
    }
    const auto [pad, grain] = m_selection.first();
    call(&IGrooveSampler::AuditionPad, pad, grain);
    return true;
}

}  // namespace marnoth
