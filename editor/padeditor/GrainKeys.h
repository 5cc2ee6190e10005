#pragma once

#include "editor/PaneParent.h"

namespace marnoth {

class GrainPanel;
class PadEditorPane;
struct EventSelectionInfo;

/// What keys do with the selected grains. The page's thread.
class GrainKeys {
public:
    /// All outlive it.
    GrainKeys(PaneParent& page, PadEditorPane& editor, GrainPanel& panel)
        : page_(page), editor_(editor), panel_(panel) {}

    /// False when the key means nothing now. While a drag is open nothing is deleted and nothing undone.
    bool press(int key, Modifiers held, bool dragIsOpen);

private:
    bool arrow(int key);
    EventSelectionInfo neighbour(int key, const EventSelectionInfo& from) const;
    void deleteSelection();
    void undo(bool redo);
    bool transposeSelection(int semitones);

    PaneParent& page_;
    PadEditorPane& editor_;
    GrainPanel& panel_;
};

}  // namespace marnoth
