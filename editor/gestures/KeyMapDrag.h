#pragma once

#include "editor/PaneParent.h"
#include "editor/gestures/Gesture.h"

namespace marnoth {

class PadPanel;
class StripPane;

/// A key of the key map, or one of its handles, or the keyboard itself.
class KeyMapDrag final : public Gesture {
public:
    KeyMapDrag(PaneParent& page, StripPane& strip, PadPanel& panel)
        : page_(page), strip_(strip), panel_(panel) {}

    bool press(Point at, Modifiers held) override;
    void move(Point at, Modifiers held) override;
    void release(Point at, Modifiers held) override;
    void drop() override;

private:
    PaneParent& page_;
    StripPane& strip_;
    PadPanel& panel_;
};

}  // namespace marnoth
