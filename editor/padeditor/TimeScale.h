#pragma once

#include <array>
#include <cstdint>

#include "platform/drawing/Geometry.h"
#include "seam/Limits.h"
#include "seam/MusicalTime.h"

namespace marnoth {

inline constexpr std::array<int, 8> kSnapTable{0, 1, 2, 3, 4, 8, 12, 16};  ///< divisions of a beat

/// How the Pad Editor lays time and pads out: what its gestures and its paint have in common. All casts
/// truncate. Pixels beyond `kFarPixel` stop there, and times at the ends of 64 bits.
struct TimeScale {
    Rect view;           ///< ruler and labels included
    Rect plot;           ///< where grains lie
    int horizontal = 0;  ///< first pixel shown
    int vertical = 0;
    double pixelsPerBeat = 54.0;  ///< 20 to 200
    int rowHeight = 10;           ///< 10 to 30 in steps of 5
    int snapIndex = 6;            ///< into `kSnapTable`; outside it nothing snaps

    int TickToPixel(std::int64_t ticks16) const;
    /// Never negative.
    std::int64_t PixelToTick(int x) const;
    /// The nearest division of the beat, in the middle the later one.
    std::int64_t SnapTick(std::int64_t ticks16) const;
    /// The inset of a grain in its row.
    int GrainMargin() const;
    /// Row of a height: above 15 counts as 15; -1 for none.
    int rowOf(int y) const;
    /// The row's own number, held nowhere: -1 only from a full row above the plot, 16 and more below.
    int rawRowOf(int y) const;
    /// Top of a row, client pixels.
    int topOf(int row) const { return rowHeight * row - vertical + plot.top; }
    /// Where the grains of a row lie, over the whole width of the view.
    Rect grainBand(int row) const;
    /// Whether an x lies between the edges of the plot.
    bool isInPlot(int x) const { return plot.left <= x && x < plot.right; }
    /// False outside the view and on no row: `row` is -1 then. `onLabel`: on the pad's name.
    bool HitTestRow(Point point, int* row, bool* onLabel) const;

    /// Pixels that a pad needs which ends at `endTicks16`: a beat more.
    int contentWidth(std::int64_t endTicks16) const;
    int contentHeight() const { return kPads * rowHeight; }

    // Zooming leaves `horizontal` and `vertical` alone, whatever is seen then.
    /// Held to what zooming comes to; what is no number changes nothing.
    void setZoom(double beat, int row);
    void zoomIn();
    void zoomOut();
    void makeRowsHigher();
    void makeRowsLower();
};

}  // namespace marnoth
