#include "editor/padeditor/PadEditorPane.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include "editor/BoundEngine.h"
#include "editor/PageLayout.h"
#include "editor/PageView.h"
#include "editor/Truncate.h"
#include "editor/controls/PageControls.h"
#include "editor/controls/WheelWay.h"
#include "editor/padeditor/GrainShape.h"
#include "editor/padeditor/PadViewPaint.h"
#include "platform/drawing/Surface.h"
#include "seam/Limits.h"

namespace marnoth {

namespace {

/// Beyond any zoom, whichever the step.
constexpr int kMostZooms = 16;
/// What stays free at the left of a grain that was scrolled to, pixels.
constexpr int kLeftRoom = 12;

}  // namespace

PadEditorPane::PadEditorPane(PaneParent& page, PageControls& controls, Font& small, Font& large)
    : page_(page), controls_(controls), small_(small), large_(large) {
    scale_.view = kPadView;
    scale_.plot = kPadPlot;
    horizontal_.setUp({100, 537, 553, 545}, CGrooveScroller::kHorizontal, kPadPlot.width(), 800);
    vertical_.setUp({585, 350, 593, 504}, CGrooveScroller::kVertical, kPadPlot.height(), 800);
}

TimeScale PadEditorPane::scale() const {
    TimeScale scale = scale_;
    scale.horizontal = horizontal_.position();
    scale.vertical = vertical_.position();
    return scale;
}

void PadEditorPane::show(const KeptView& view) {
    scale_.setZoom(view.pixelsPerBeat, view.rowHeight);
    scale_.snapIndex = std::clamp(view.snapIndex, 0, static_cast<int>(kSnapTable.size()) - 1);
    lightRow(-1);
    updateScrollers();
    horizontal_.SetTrackPosition(-1, view.editorPosition.x, -1);
    vertical_.SetTrackPosition(-1, view.editorPosition.y, -1);
}

void PadEditorPane::updateScrollers() {
    const BoundEngine& engine = page_.engine();
    vertical_.SetTrackPosition(scale_.contentHeight(), vertical_.position(), -1);
    int total = kPadPlot.width();
    for (int pad = 0; pad < kPads; ++pad) {
        const auto end = engine.get(&IGrooveSampler::GetPadEndTime, std::int64_t{0}, pad);
        total = std::max(total, scale_.contentWidth(std::max(end, engine.loopLength(pad))));
    }
    horizontal_.SetTrackPosition(total, horizontal_.position(), -1);
}

void PadEditorPane::paint(Surface& surface, const GesturePicture& gestures) {
    updateScrollers();
    const TimeScale scale = this->scale();
    surface.SelectClipRgn(kPadView);
    fillPadView(surface, scale);
    drawRuler(surface, scale, horizontal_.total(), small_);
    surface.SelectClipRgn(Rect{kPadView.left, kPadPlot.top, kPadView.right, kPadView.bottom});
    drawPadRows(surface, scale, litRow_ < 0 ? page_.view().currentPad : litRow_, small_, large_);
    surface.SelectClipRgn(kPadPlot);
    PadPlots ghosts;
    for (int pad = 0; pad < kPads; ++pad)
        paintRow(surface, scale, pad, gestures, ghosts[static_cast<std::size_t>(pad)]);
    for (const EventPlot& row : ghosts)
        for (const EventPlotInfo& info : row)
            drawGrain(surface, info.rect.movedBy(gestures.offset.x, gestures.offset.y), info.tail != 0,
                      GrainState::selected);
    if (const int marked = gestures.markedPad; marked >= 0) {
        const Rect band = scale.grainBand(marked);
        const int x = scale.TickToPixel(page_.engine().loopLength(marked)) + gestures.markOffset;
        drawLengthMarker(surface, x, band.top, band.bottom);
    }
    surface.SelectClipRgn({});
    horizontal_.paint(surface);
    vertical_.paint(surface);
}

bool PadEditorPane::isVisible(const Rect& band) const {
    const Rect inView = intersection(band, kPadView);
    return !inView.isEmpty() && page_.RectVisible(inView);
}

void PadEditorPane::paintRow(Surface& surface, const TimeScale& scale, int pad,
                             const GesturePicture& gestures, EventPlot& ghosts) {
    const Rect band = scale.grainBand(pad);
    if (!isVisible(band)) return;
    EventPlot& plot = plots_[static_cast<std::size_t>(pad)];
    plot = plotGrains(scale, pad, page_.engine().padGrains(pad).entries());
    paintGrains(surface, pad, gestures, ghosts);
    if (gestures.markedPad == pad) return;
    const std::int64_t length = page_.engine().loopLength(pad);
    const int x = scale.TickToPixel(length);
    if (hasLengthMarker(length, !plot.empty()) && scale.isInPlot(x))
        drawLengthMarker(surface, x, band.top, band.bottom);
}

void PadEditorPane::paintGrains(Surface& surface, int pad, const GesturePicture& gestures,
                                EventPlot& ghosts) const {
    for (const EventPlotInfo& info : plots_[static_cast<std::size_t>(pad)]) {
        const bool selected = page_.view().selection.contains(pad, info.grain);
        if (gestures.movesGrains && selected) {
            ghosts.push_back(info);
            if (!gestures.keepsGrains) continue;
        }
        const bool hovered =
            hovered_ && gestures.markedPad < 0 && hovered_->pad == pad && hovered_->grain == info.grain;
        const GrainState state = hovered    ? GrainState::hovered
                                 : selected ? GrainState::selected
                                            : GrainState::normal;
        drawGrain(surface, info.rect, info.tail != 0, state);
    }
}

std::optional<GrainHit> PadEditorPane::HitTestGrain(Point at) const {
    const auto row = HitTestRow(at);
    if (!row) return {};
    const TimeScale scale = this->scale();
    const EventPlot& plot = plots_[static_cast<std::size_t>(row->pad)];
    if (plot.empty()) return {};
    const int guess = guessGrain(scale.PixelToTick(at.x), page_.engine().loopLength(row->pad),
                                 static_cast<std::int32_t>(plot.size()));
    const int hit = hitPlot(scale, plot, guess, at.x);
    if (hit < 0) return {};
    const EventPlotInfo& info = plot[static_cast<std::size_t>(hit)];
    return GrainHit{row->pad, info.grain, {scale.TickToPixel(info.start), scale.topOf(row->pad)}};
}

std::optional<RowHit> PadEditorPane::HitTestRow(Point at) const {
    RowHit hit{-1, false};
    if (!scale().HitTestRow(at, &hit.pad, &hit.onLabel)) return {};
    return hit;
}

std::optional<PadEditorPane::MarkHit> PadEditorPane::hitTestMark(Point at) const {
    constexpr int kMiddle = 5;  // pixels right of the loop's end
    constexpr int kReach = 4;
    const auto row = HitTestRow(at);
    if (!row || plots_[static_cast<std::size_t>(row->pad)].empty()) return {};
    const int mark = scale().TickToPixel(page_.engine().loopLength(row->pad));
    if (std::abs(at.x - mark - kMiddle) >= kReach) return {};
    return MarkHit{row->pad, mark};
}

const EventPlotInfo& PadEditorPane::plotted(int pad, int grain) const {
    const auto row = static_cast<std::size_t>(pad);
    const auto entry = static_cast<std::size_t>(grain);
    if (pad < 0 || row >= plots_.size() || grain < 0 || entry >= plots_[row].size())
        throw std::invalid_argument("no such grain was painted");
    return plots_[row][entry];
}

std::int64_t PadEditorPane::snappedTick(int x, int grabX) const {
    const TimeScale scale = this->scale();
    return scale.SnapTick(scale.PixelToTick(x - grabX));
}

int PadEditorPane::snappedX(int x, int grabX) const {
    return scale().TickToPixel(snappedTick(x, grabX)) + grabX;
}

void PadEditorPane::invalidateTracks() {
    page_.invalidate(horizontal_.track());
    page_.invalidate(vertical_.track());
}

void PadEditorPane::invalidateAll() {
    invalidateView();
    invalidateTracks();
}

void PadEditorPane::invalidateView() {
    page_.invalidate(kPadView);
}

void PadEditorPane::invalidateRow(int pad) {
    const int top = scale().topOf(pad);
    page_.invalidate(intersection(kPadView, {kPadView.left, top, kPadView.right, top + scale_.rowHeight}));
}

bool PadEditorPane::isHovered(const GrainHit& hit) const {
    return hovered_ && hovered_->pad == hit.pad && hovered_->grain == hit.grain;
}

void PadEditorPane::hover(const GrainHit& hit) {
    if (isHovered(hit)) return;
    if (hovered_) invalidateRow(hovered_->pad);
    invalidateRow(hit.pad);
    hovered_ = Hovered{hit.pad, hit.grain};
}

void PadEditorPane::leaveHover() {
    if (hovered_) invalidateRow(hovered_->pad);
    hovered_.reset();
}

void PadEditorPane::scrollToGrain(int key, int pad, int grain) {
    const Rect rect = plotted(pad, grain).rect;
    const std::int64_t start = page_.engine().padGrains(pad).startOf(grain);
    const double beats = static_cast<double>(start) / kTicks16PerBeat;
    const int x = truncateToPixel(beats * scale_.pixelsPerBeat + 0.5) - kLeftRoom;
    const int position = horizontal_.position();
    const bool isLeft = rect.right < kPadPlot.left + 2;
    const bool isRight = rect.left > kPadPlot.right - 2;
    const auto scrollTo = [&](int to) { horizontal_.SetTrackPosition(-1, to, -1); };
    if (key == kKeyLeft && isLeft) return scrollTo(std::min(x, position - kPadPlot.width() + kLeftRoom));
    if (key == kKeyRight && isRight) return scrollTo(std::max(x, position + kPadPlot.width() - kLeftRoom));
    if ((key == kKeyUp || key == kKeyDown) && (isLeft || isRight)) scrollTo(x);
}

bool PadEditorPane::wheel(Point at, WheelAxis axis, int steps, Modifiers held) {
    if (!kPadView.contains(at)) return false;
    if (held.control && axis == WheelAxis::vertical) {
        for (int step = 0; step < std::min(std::abs(steps), kMostZooms); ++step)
            zoom(steps > 0 ? kZoomIn : kZoomOut);
    } else if (!held.control) {
        const WheelWay way = wheelWay(axis, steps, held);
        CGrooveScroller& scroller = way.sideways ? horizontal_ : vertical_;
        // A beat, or a row.
        const int step = way.sideways ? truncateToPixel(scale_.pixelsPerBeat) : scale_.rowHeight;
        scroller.scrollBy(way.steps * step);
        invalidateView();
        page_.invalidate(scroller.track());
    }
    return true;
}

bool PadEditorPane::command(int id) {
    if (id != kZoomIn && id != kZoomOut && id != kRowsHigher && id != kRowsLower) return false;
    zoom(id);
    return true;
}

void PadEditorPane::zoom(int id) {
    switch (id) {
        case kZoomIn:
            scale_.zoomIn();
            break;
        case kZoomOut:
            scale_.zoomOut();
            break;
        case kRowsHigher:
            scale_.makeRowsHigher();
            break;
        default:
            scale_.makeRowsLower();
    }
    const bool ofTime = id == kZoomIn || id == kZoomOut;
    invalidateView();
    page_.invalidate((ofTime ? horizontal_ : vertical_).track());
}

bool PadEditorPane::applyCombo(int id) {
    if (id != kSnap) return false;
    CFxComboBox& combo = controls_.combo(id);
    const int selection = combo.selection();
    if (selection < 0) return true;
    scale_.snapIndex = selection;
    combo.select(selection);
    return true;
}

void PadEditorPane::showSnap() {
    if (scale_.snapIndex >= static_cast<int>(kSnapTable.size())) scale_.snapIndex = 0;
    controls_.combo(kSnap).select(scale_.snapIndex);
}

}  // namespace marnoth
