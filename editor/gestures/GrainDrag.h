#pragma once

#include "editor/PaneParent.h"
#include "editor/gestures/Gesture.h"

namespace marnoth {

class PadEditorPane;

/// Grains that are taken hold of in the Pad Editor, all those selected: to other places and pads, with
/// Control as copies, with Shift without a change of their times.
class GrainDrag final : public Gesture {
public:
    GrainDrag(PaneParent& page, PageWindow& window, PadEditorPane& editor)
        : page_(page), window_(window), editor_(editor) {}

    /// Selects the grain, shows its source and plays it.
    bool press(Point at, Modifiers held) override;
    void move(Point at, Modifiers held) override;
    /// A release near the press, or outside the view, changes nothing.
    void release(Point at, Modifiers held) override;

    /// How far the grains are away from their places.
    Point offset() const { return {current_.x - press_.x, current_.y - press_.y}; }

private:
    bool isNearPress(Point at) const;
    void moveSelection(int padsDown, std::int64_t delta, Modifiers held);

    PaneParent& page_;
    PageWindow& window_;
    PadEditorPane& editor_;
    Point press_;
    Point current_;  ///< where the pointer counts to be: snapped
    Point grab_;     ///< the press, from the grain's left and the row's top
    int pad_ = -1;   ///< of the grain that was pressed
    int grain_ = -1;
};

}  // namespace marnoth
