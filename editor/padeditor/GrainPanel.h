#pragma once

#include "editor/PaneParent.h"

namespace marnoth {

class PageControls;

/// Transpose, volume and pan of the one grain that is selected, in texts and on knobs; with any other number
/// of them the knobs move and change nothing. The page's thread.
///
/// An operation with `notify` works both ways: with it the engine is told, without it the page only shows.
class GrainPanel {
public:
    /// Both outlive it.
    GrainPanel(PaneParent& page, PageControls& controls) : page_(page), controls_(controls) {}

    /// Shows what the engine says of the first selected grain.
    void refresh();
    void SetGrainTransposeText(int value, bool notify);
    void SetGrainVolumeText(float value, bool notify);
    void SetGrainPanText(float value, bool notify);

    /// What stands in an edit counts. False when it is one of another pane.
    bool applyEdit(int id);
    /// False when it is a knob of another pane.
    bool knobTurned(int id);
    static bool hasKnob(int id);

private:
    PaneParent& page_;
    PageControls& controls_;
    // What the edits got last, for a text that can't be read.
    int transpose_ = 0;
    float volume_ = 1.0f;
    float pan_ = 0.5f;
};

}  // namespace marnoth
