#pragma once

#include <span>

#include "editor/padeditor/EventPlot.h"
#include "editor/padeditor/TimeScale.h"

namespace marnoth {

class Font;
class Surface;
struct GrainListEntry;

/// What of the Pad Editor view is the same whatever the pads hold. Each draws within the clip that it finds.

void fillPadView(Surface& surface, const TimeScale& scale);

/// A line and a number for each beat of a content of `total` pixels, as far as it can be seen.
void drawRuler(Surface& surface, const TimeScale& scale, int total, Font& small);

/// The names of the sixteen pads, `litPad` shining, and the lines between the rows.
void drawPadRows(Surface& surface, const TimeScale& scale, int litPad, Font& small, Font& large);

/// Where the grains of a pad lie, in the order of `grains`.
EventPlot plotGrains(const TimeScale& scale, int pad, std::span<const GrainListEntry> grains);

/// Whether a pad shows the mark of its loop length at all; it may still lie outside the plot.
constexpr bool hasLengthMarker(std::int64_t loopTicks16, bool hasGrains) {
    return loopTicks16 >= 1 || hasGrains;
}

}  // namespace marnoth
