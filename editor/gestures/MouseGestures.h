#pragma once

#include <array>

#include "editor/PaneParent.h"
#include "editor/gestures/BinFileDrag.h"
#include "editor/gestures/BinGrainDrag.h"
#include "editor/gestures/GrainDrag.h"
#include "editor/gestures/KeyMapDrag.h"
#include "editor/gestures/LengthDrag.h"
#include "editor/gestures/PadHold.h"
#include "editor/gestures/ScrollDrag.h"
#include "editor/padeditor/PadEditorPane.h"

namespace marnoth {

class LoopBinPane;
class PadBlock;
class PadPanel;
class StripPane;

/// What the mouse does on the page where no control is: which of the gestures a press begins, which of those
/// that are open a move and a release are for, and the grain that shines under the pointer. The page's
/// thread.
class MouseGestures {
public:
    /// The panes that gestures work on. All outlive them.
    struct Panes {
        LoopBinPane& bin;
        PadBlock& pads;
        PadPanel& panel;
        StripPane& strip;
        PadEditorPane& editor;
    };
    MouseGestures(PaneParent& page, PageWindow& window, const Panes& panes);

    void press(Point at, Modifiers held);
    void move(Point at, Modifiers held);
    /// The button is up: ends what a press began. False when none did.
    bool release(Point at, Modifiers held);
    void doubleClick(Point at);
    /// The grain that lies there shines, if one does.
    void hover(Point at);
    /// Whatever is held is let go, without effect.
    void drop();

    bool isButtonDown() const { return buttonDown_; }
    bool dragsBinFile() const { return binFile_.isOpen(); }
    /// Whether grains, files or keys are dragged: nothing may go from under them.
    bool isDragOpen() const;
    GesturePicture picture(Modifiers held) const;

private:
    void pressByPlace(Point at, Modifiers held);
    void pressElsewhere(Point at, Modifiers held);
    void finish(Point at, Modifiers held);
    void selectAll(int pad);

    PaneParent& page_;
    PageWindow& window_;
    Panes panes_;
    PadHold pad_;
    LengthDrag length_;
    GrainDrag grains_;
    KeyMapDrag keyMap_;
    BinGrainDrag binGrain_;
    ScrollDrag scroll_;
    BinFileDrag binFile_;
    /// Those of which the first that is open moves and ends; a press that began none of them is a plain one.
    std::array<Gesture*, 5> drags_{&grains_, &length_, &keyMap_, &binFile_, &binGrain_};
    bool buttonDown_ = false;
};

}  // namespace marnoth
