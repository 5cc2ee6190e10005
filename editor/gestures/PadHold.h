#pragma once

#include "editor/PaneParent.h"
#include "editor/gestures/Gesture.h"

namespace marnoth {

class PadBlock;

/// A press in the pad block chooses a pad, and on its image plays it until the release.
class PadHold final : public Gesture {
public:
    PadHold(PaneParent& page, const PadBlock& pads) : page_(page), pads_(pads) {}

    bool press(Point at, Modifiers held) override;
    /// What any plain press ends with: the pad on whose image the button is let go stops.
    void release(Point at, Modifiers held) override;
    void drop() override;
    /// The button is up: nothing is left for `drop` to stop.
    void forget() { setOpen(false); }

private:
    PaneParent& page_;
    const PadBlock& pads_;
    int held_ = -1;  ///< the pad that plays; -1 for none
};

}  // namespace marnoth
