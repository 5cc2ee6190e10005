#pragma once

#include <optional>

#include "editor/PaneParent.h"
#include "editor/padeditor/EventPlot.h"
#include "editor/strip/KeyMapEditor.h"

namespace marnoth {

class Font;
class Surface;

/// The strip above the Pad Editor: the waveforms of the current file, or the key map of the current pad, by
/// two tabs. The page's thread.
class StripPane {
public:
    /// Both outlive it.
    StripPane(PaneParent& page, Font& font);

    bool showsKeyMap() const { return showsKeyMap_; }
    void showKeyMap(bool on) { showsKeyMap_ = on; }
    void paint(Surface& surface);
    /// Switches to the view of the tab that lies there; false where none does.
    bool HitTestViewTab(Point at);

    /// The grain of the current file that lies there, in the waveform view.
    std::optional<int> grainAt(Point at);

    /// Whether a press there is one on the key map.
    bool showsKeyMapAt(Point at) const;
    /// There: whether it took hold of something.
    bool pressKeyMap(Point at);
    /// What is held follows the pointer in the current pad's entry, which is given and told to the engine.
    KeyMapRecord dragKeyMap(Point at, bool shiftHeld);
    void endKeyMapDrag() { keyMap_.endDrag(); }

private:
    /// Nothing was loaded yet: the strip tells how to begin.
    bool isEmpty() const;
    void paintWaveforms(Surface& surface);
    KeyMapRecord keyMapEntry() const;

    PaneParent& page_;
    Font& font_;
    bool showsKeyMap_ = false;
    CKeyMapEditor keyMap_;
    EventPlot plot_;    ///< where the grains of `plotted_` lie
    int plotted_ = -1;  ///< the file that was painted last; -1 for none
};

}  // namespace marnoth
