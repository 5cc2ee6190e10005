#include "editor/padeditor/PadViewPaint.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "editor/skin/Palette.h"
#include "platform/drawing/Surface.h"
#include "seam/IGrooveSampler.h"
#include "seam/Limits.h"

namespace marnoth {
namespace {

/// Rows lower than this have no room for the large font.
constexpr int kLargeFontRow = 13;

void drawPadName(Surface& surface, const TimeScale& scale, int pad, bool lit) {
    const int top = scale.topOf(pad);
    surface.SelectPen({kPalette[4]});
    surface.SelectBrush(lit ? kPalette[4] : kPalette[1]);
    surface.SetTextColor(lit ? kPalette[0] : kPalette[3]);
    surface.SetGroundColor(lit ? kPalette[4] : kPalette[1]);
    if (lit) surface.Rectangle({scale.view.left, top, scale.plot.left - 3, top + scale.rowHeight});
    surface.TextOut({scale.view.left, top}, "Pad " + std::to_string(pad + 1));
}

}  // namespace

void fillPadView(Surface& surface, const TimeScale& scale) {
    surface.SelectPen({kPalette[1]});
    surface.SelectBrush(kPalette[1]);
    surface.Rectangle(scale.view);
}

void drawRuler(Surface& surface, const TimeScale& scale, int total, Font& small) {
    surface.SelectPen({kPalette[5]});
    surface.SetTextColor(kPalette[3]);
    surface.SetGroundColor(kPalette[1]);
    surface.SelectFont(&small);
    const std::int64_t last = std::llround(total / scale.pixelsPerBeat);
    // A beat before the first pixel shown: what lies left of that can't be seen.
    const std::int64_t first =
        std::max<std::int64_t>(0, static_cast<std::int64_t>(scale.horizontal / scale.pixelsPerBeat) - 1);
    for (std::int64_t beat = first; beat <= last; ++beat) {
        const int x = scale.TickToPixel(beat * kTicks16PerBeat);
        if (x >= scale.plot.right) break;
        if (!scale.isInPlot(x)) continue;
        drawLine(surface, {x, scale.plot.top}, {x, scale.plot.top + scale.contentHeight() + 1});
        surface.TextOut({x + 1, scale.plot.top - 12}, std::to_string(beat + 1));
    }
}

void drawPadRows(Surface& surface, const TimeScale& scale, int litPad, Font& small, Font& large) {
    surface.SelectFont(scale.rowHeight < kLargeFontRow ? &small : &large);
    for (int pad = 0; pad <= kPads; ++pad) {
        if (pad < kPads) drawPadName(surface, scale, pad, pad == litPad);
        surface.SelectPen({kPalette[5]});
        const int top = scale.topOf(pad);
        drawLine(surface, {scale.view.left, top}, {scale.view.right, top});
    }
}

EventPlot plotGrains(const TimeScale& scale, int pad, std::span<const GrainListEntry> grains) {
    EventPlot plot;
    plot.reserve(grains.size());
    const Rect band = scale.grainBand(pad);
    for (const GrainListEntry& grain : grains) {
        const Rect rect{scale.TickToPixel(grain.startTicks), band.top, scale.TickToPixel(grain.endTicks),
                        band.bottom};
        plot.push_back({static_cast<std::int32_t>(plot.size()), grain.startTicks, rect,
                        static_cast<std::int32_t>(grain.extra), grain.endTicks});
    }
    return plot;
}

}  // namespace marnoth
