#pragma once

#include <map>

#include "editor/PaneParent.h"
#include "editor/texts/RootScale.h"
#include "seam/IGrooveSampler.h"

namespace marnoth {

class PageControls;

/// The settings of the current pad: its three toggles, output, channel and root note, and its entry of the
/// key map in texts. The page's thread.
///
/// An operation with `notify` works both ways: with it the engine is told, without it the page only shows.
/// Values are held to 0 to 127.
class PadPanel {
public:
    /// Both outlive it.
    PadPanel(PaneParent& page, PageControls& controls) : page_(page), controls_(controls) {}

    /// How root notes are named from the next refresh on; `fromA` at first.
    void setRootScale(RootScale scale) { rootScale_ = scale; }
    /// Shows what the engine says of the current pad.
    void refresh();
    /// The three toggles alone.
    void showToggles();
    void showKeyMapEntry(const KeyMapRecord& entry);
    void SetLowKey(int value, bool notify);
    void SetHighKey(int value, bool notify);
    void SetRootKey(int value, bool notify);
    void SetLowVelocity(int value, bool notify);
    void SetHighVelocity(int value, bool notify);

    /// With Shift the toggles set those of all pads. False when it is the command of another pane.
    bool command(int id, Modifiers held);
    // What stands in an edit or in a combo counts. False when it is one of another pane.
    bool applyEdit(int id);
    bool applyCombo(int id);

private:
    KeyMapRecord keyMapEntry() const;
    void writeKeyMapEntry(const KeyMapRecord& entry) const;
    void showKey(int id, int key);
    void showVelocity(int id, int velocity);
    void applyNoteName(int id);
    void applyVelocity(int id);
    // Items of the combo: none, then the notes from A on.
    int itemOfRoot(int root) const;
    int rootOfItem(int item) const;

    PaneParent& page_;
    PageControls& controls_;
    RootScale rootScale_ = RootScale::fromA;
    std::map<int, int> shown_;  ///< by an edit's id: its value, for a text that can't be read
};

}  // namespace marnoth
