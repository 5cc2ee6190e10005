#pragma once

#include "editor/PaneParent.h"
#include "editor/gestures/Gesture.h"

namespace marnoth {

class LoopBinPane;
class PadBlock;
class PadEditorPane;

/// A file of the Loop Bin, dragged onto a pad's image or into its row.
class BinFileDrag final : public Gesture {
public:
    BinFileDrag(PaneParent& page, LoopBinPane& bin, const PadBlock& pads, PadEditorPane& editor)
        : page_(page), bin_(bin), pads_(pads), editor_(editor) {}

    bool press(Point at, Modifiers held) override;
    void release(Point at, Modifiers held) override;

private:
    PaneParent& page_;
    LoopBinPane& bin_;
    const PadBlock& pads_;
    PadEditorPane& editor_;
};

}  // namespace marnoth
