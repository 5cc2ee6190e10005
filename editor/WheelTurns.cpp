/// The wheel over the page: it scrolls and zooms what lies under it, and turns knobs.

#include <algorithm>
#include <cstdlib>

#include "editor/GrooveSamplerPropPage.h"
#include "editor/PageLayout.h"
#include "editor/Truncate.h"

namespace marnoth {

namespace {

/// Beyond any zoom, whichever the step.
constexpr int kMostZooms = 16;

void scroll(CGrooveScroller& scroller, std::int64_t pixels) {
    scroller.SetTrackPosition(-1, heldToFarPixel(scroller.position() + pixels), -1);
}

}  // namespace

void CGrooveSamplerPropPage::wheelTurned(Point at, WheelAxis axis, int steps) {
    if (m_mouseDown) return;
    // A wheel that only turns one way reaches the other with Shift: downward goes to the right.
    const bool sideways = axis == WheelAxis::horizontal || held().shift;
    const int forward = axis == WheelAxis::horizontal ? steps : -steps;
    if (kBinList.contains(at)) return scrollBin(sideways, forward);
    if (!kPadView.contains(at)) return;
    if (!held().control) return scrollView(sideways, forward);
    if (axis == WheelAxis::horizontal) return;
    for (int step = 0; step < std::min(std::abs(steps), kMostZooms); ++step)
        zoomCommand(steps > 0 ? kZoomIn : kZoomOut);
}

void CGrooveSamplerPropPage::scrollView(bool sideways, int steps) {
    CGrooveScroller& scroller = sideways ? m_padHorizontal : m_padVertical;
    // A beat, or a row.
    const int step = sideways ? truncateToPixel(m_timeScale.pixelsPerBeat) : m_timeScale.rowHeight;
    scroll(scroller, std::int64_t{steps} * step);
    invalidateView();
    invalidate(scroller.track());
}

void CGrooveSamplerPropPage::scrollBin(bool sideways, int steps) {
    CGrooveScroller& scroller = sideways ? m_binHorizontal : m_binVertical;
    scroll(scroller, std::int64_t{steps} * kBinRowHeight);
    invalidate(kBinList);
    invalidate(scroller.track());
}

void CGrooveSamplerPropPage::beginWheelRun(const Control& control, int steps) {
    const auto* const knob = dynamic_cast<const CBitmapKnobCtrl*>(&control);
    if (!knob || !knob->turnsBy(steps)) return;
    const bool ofGrain = knob->id() >= kTransposeKnob && knob->id() <= kPanKnob;
    if (ofGrain && m_selection.size() != 1) return;
    const WheelRun run{knob->id(), acts()};
    if (m_wheelRun == run) return;
    m_wheelRun = run;
    call(&IGrooveSampler::PushUndoState);
}

}  // namespace marnoth
