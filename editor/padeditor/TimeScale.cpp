#include "editor/padeditor/TimeScale.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "editor/Truncate.h"

namespace marnoth {
namespace {

/// Whole beats that 64 bits of ticks hold, with room for a part of one more.
constexpr std::int64_t kLastBeat = std::numeric_limits<std::int64_t>::max() / kTicks16PerBeat - 1;

// What zooming comes to, pixels.
constexpr double kNarrowestBeat = 20.0;
constexpr double kWidestBeat = 200.0;
constexpr int kLowestRow = 10;
constexpr int kHighestRow = 30;
constexpr int kRowStep = 5;

}  // namespace

int TimeScale::TickToPixel(std::int64_t ticks16) const {
    const double pixels = static_cast<double>(ticks16) / kTicks16PerBeat * pixelsPerBeat + 0.5;
    return heldToFarPixel(std::int64_t{plot.left} - horizontal + truncateToPixel(pixels));
}

std::int64_t TimeScale::PixelToTick(int x) const {
    const auto pixels = static_cast<double>(std::int64_t{horizontal} - plot.left + x);
    return static_cast<std::int64_t>(std::max(0.0, pixels / pixelsPerBeat * kTicks16PerBeat + 0.5));
}

std::int64_t TimeScale::SnapTick(std::int64_t ticks16) const {
    if (snapIndex < 0 || snapIndex >= static_cast<int>(kSnapTable.size())) return ticks16;
    const int perBeat = kSnapTable[static_cast<std::size_t>(snapIndex)];
    if (perBeat == 0) return ticks16;

    const auto divisions = static_cast<std::int64_t>(
        static_cast<double>(perBeat) * static_cast<double>(ticks16) / kTicks16PerBeat + 0.5);
    // Divisions times ticks of a beat, divided by divisions of a beat: whole beats go apart, since the
    // product needs more than 64 bits at the ends.
    const std::int64_t beats = std::clamp(divisions / perBeat, -kLastBeat, kLastBeat);
    return beats * kTicks16PerBeat + divisions % perBeat * kTicks16PerBeat / perBeat;
}

int TimeScale::GrainMargin() const {
    if (rowHeight >= 18) return 5;
    return rowHeight >= 13 ? 3 : 1;
}

int TimeScale::rawRowOf(int y) const {
    return static_cast<int>((std::int64_t{y} + vertical - plot.top) / rowHeight);
}

int TimeScale::rowOf(int y) const {
    return std::clamp(rawRowOf(y), -1, kPads - 1);
}

Rect TimeScale::grainBand(int row) const {
    const int top = topOf(row) + GrainMargin();
    return {view.left, top, view.right, top + rowHeight - 2 * GrainMargin()};
}

bool TimeScale::HitTestRow(Point point, int* row, bool* onLabel) const {
    *row = view.contains(point) ? rowOf(point.y) : -1;
    *onLabel = *row >= 0 && point.x > view.left && point.x < plot.left - 2;
    return *row >= 0;
}

int TimeScale::contentWidth(std::int64_t endTicks16) const {
    return truncateToPixel((static_cast<double>(endTicks16) / kTicks16PerBeat + 1.0) * pixelsPerBeat + 0.5);
}

void TimeScale::setZoom(double beat, int row) {
    if (!std::isnan(beat)) pixelsPerBeat = std::clamp(beat, kNarrowestBeat, kWidestBeat);
    rowHeight = std::clamp(row - row % kRowStep, kLowestRow, kHighestRow);
}

void TimeScale::zoomIn() {
    pixelsPerBeat = std::min(pixelsPerBeat * 1.5, kWidestBeat);
}

void TimeScale::zoomOut() {
    pixelsPerBeat = std::max(pixelsPerBeat * 0.6666666666666666, kNarrowestBeat);
}

void TimeScale::makeRowsHigher() {
    rowHeight = std::min(rowHeight + kRowStep, kHighestRow);
}

void TimeScale::makeRowsLower() {
    rowHeight = std::max(rowHeight - kRowStep, kLowestRow);
}

}  // namespace marnoth
