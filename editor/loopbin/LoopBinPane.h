#pragma once

#include "editor/PaneParent.h"
#include "editor/controls/GrooveScroller.h"

namespace marnoth {

class Font;
class PageControls;
class Surface;

/// The list of the audio files that a project holds, and its buttons. The files are the engine's: the list is
/// read at each paint. The page's thread.
class LoopBinPane {
public:
    /// All outlive the pane.
    LoopBinPane(PaneParent& page, PageControls& controls, Font& font);

    void paint(Surface& surface);
    /// False outside the list. `index` is the row's file, -1 below the last one.
    bool HitTestBinRow(Point at, int* index) const;
    /// Makes the file of a row the current one, and plays it if the play toggle is down. False on no file.
    bool pressRow(Point at);
    /// Scrolls by clicks of the wheel. False outside the list.
    bool wheel(Point at, WheelAxis axis, int steps, Modifiers held);

    /// False when it is the command of another pane.
    bool command(int id);
    /// Shows whether grains are played when they are chosen.
    void showAudition();
    void invalidateTracks();

    CGrooveScroller& vertical() { return vertical_; }
    CGrooveScroller& horizontal() { return horizontal_; }
    /// What is scrolled out at the left and above, pixels.
    Point position() const { return {horizontal_.position(), vertical_.position()}; }
    /// As far as there is something.
    void scrollTo(Point position);

private:
    void askToDelete();
    void removeCurrentFile();
    void play();
    void stop();

    PaneParent& page_;
    PageControls& controls_;
    Font& font_;
    CGrooveScroller vertical_;
    CGrooveScroller horizontal_;
};

}  // namespace marnoth
