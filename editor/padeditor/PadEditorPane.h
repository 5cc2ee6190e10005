#pragma once

#include <optional>

#include "editor/KeptView.h"
#include "editor/PaneParent.h"
#include "editor/controls/GrooveScroller.h"
#include "editor/padeditor/EventPlot.h"
#include "editor/padeditor/TimeScale.h"

namespace marnoth {

class Font;
class PageControls;
class Surface;

/// A grain under a point.
struct GrainHit {
    int pad;
    int grain;
    Point corner;  ///< left of the grain, top of its row
};

/// A row under a point.
struct RowHit {
    int pad;
    bool onLabel;  ///< on the pad's name
};

/// What of the gestures that are open shows in the view.
struct GesturePicture {
    bool movesGrains = false;  ///< the selected grains are shown as ghosts, `offset` away
    bool keepsGrains = false;  ///< and at their own places too
    Point offset;
    int markedPad = -1;  ///< whose mark of the loop length is dragged; -1 for none
    int markOffset = 0;  ///< and how far to the right
};

/// The Pad Editor view: sixteen pads as rows on a ruler of beats, their grains and the marks of their loop
/// lengths, how it is zoomed and scrolled, and what lies under a point of it. The page's thread.
///
/// Where grains lie follows from their times and from the scale; which grains there are is known from the
/// last paint of their row. A row that isn't visible isn't read.
class PadEditorPane {
public:
    /// All outlive the pane.
    PadEditorPane(PaneParent& page, PageControls& controls, Font& small, Font& large);

    void paint(Surface& surface, const GesturePicture& gestures);

    /// Zoom, snap, and what the scrollers have.
    TimeScale scale() const;
    /// Those of a view, as far as they can be.
    void show(const KeptView& view);
    std::optional<GrainHit> HitTestGrain(Point at) const;
    std::optional<RowHit> HitTestRow(Point at) const;
    /// The pad whose mark of the loop length lies there, and where the mark is.
    struct MarkHit {
        int pad;
        int x;
    };
    std::optional<MarkHit> hitTestMark(Point at) const;
    /// A grain as it was painted last. Throws `std::invalid_argument` when none was.
    const EventPlotInfo& plotted(int pad, int grain) const;
    /// Where a drag has the left edge of what was grabbed at `grabX`, snapped.
    std::int64_t snappedTick(int x, int grabX) const;
    /// The same as a pixel, for what was grabbed.
    int snappedX(int x, int grabX) const;

    void invalidateView();
    void invalidateTracks();
    /// View and tracks.
    void invalidateAll();

    /// The row that is lit instead of the current pad's; below 0 for none.
    void lightRow(int pad) { litRow_ = pad; }
    int litRow() const { return litRow_; }

    // The grain under the pointer, which shines.
    bool isHovered(const GrainHit& hit) const;
    void hover(const GrainHit& hit);
    void leaveHover();
    /// Without drawing anything anew.
    void forgetHover() { hovered_.reset(); }

    /// Scrolls so that a grain comes into view to which `key` has led.
    void scrollToGrain(int key, int pad, int grain);
    /// Scrolls, or with Control zooms, by clicks of the wheel. False outside the view.
    bool wheel(Point at, WheelAxis axis, int steps, Modifiers held);
    /// Zoom. False when it is the command of another pane.
    bool command(int id);
    /// Snap. False when it is a combo of another pane.
    bool applyCombo(int id);
    void showSnap();

    CGrooveScroller& vertical() { return vertical_; }
    CGrooveScroller& horizontal() { return horizontal_; }

private:
    struct Hovered {
        int pad;
        int grain;
    };

    void updateScrollers();
    bool isVisible(const Rect& band) const;
    void paintRow(Surface& surface, const TimeScale& scale, int pad, const GesturePicture& gestures,
                  EventPlot& ghosts);
    void paintGrains(Surface& surface, int pad, const GesturePicture& gestures, EventPlot& ghosts) const;
    void invalidateRow(int pad);
    void zoom(int id);

    PaneParent& page_;
    PageControls& controls_;
    Font& small_;
    Font& large_;
    TimeScale scale_;  ///< zoom and snap; the scrollers have the positions
    CGrooveScroller horizontal_;
    CGrooveScroller vertical_;
    PadPlots plots_;
    int litRow_ = 0;
    std::optional<Hovered> hovered_;
};

}  // namespace marnoth
