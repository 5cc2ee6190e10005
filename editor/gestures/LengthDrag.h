#pragma once

#include "editor/PaneParent.h"
#include "editor/gestures/Gesture.h"

namespace marnoth {

class PadEditorPane;

/// The mark of a pad's loop length, dragged along the ruler.
class LengthDrag final : public Gesture {
public:
    LengthDrag(PaneParent& page, PageWindow& window, PadEditorPane& editor)
        : page_(page), window_(window), editor_(editor) {}

    bool press(Point at, Modifiers held) override;
    void move(Point at, Modifiers held) override;
    void release(Point at, Modifiers held) override;

    int pad() const { return pad_; }
    /// How far the mark is right of its place.
    int offset() const { return currentX_ - pressX_; }

private:
    PaneParent& page_;
    PageWindow& window_;
    PadEditorPane& editor_;
    int pad_ = -1;
    int pressX_ = 0;
    int currentX_ = 0;  ///< where the pointer counts to be: snapped
    int grabX_ = 0;     ///< the press, from the mark
};

}  // namespace marnoth
