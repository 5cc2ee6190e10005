#pragma once

#include <span>

#include "editor/PaneParent.h"

namespace marnoth {

class PageControls;

/// The controls of each pad: Mute, Solo, Synced and Looping, the knobs of volume and pan, and the two
/// read-outs of what the current pad has. The page's thread.
///
/// An operation with `notify` works both ways: with it the engine is told, without it the page only shows.
class PadStrips {
public:
    /// Both outlive it.
    PadStrips(PaneParent& page, PageControls& controls) : page_(page), controls_(controls) {}

    /// Shows what the engine says of a pad.
    void refresh(int pad);
    /// The same of its volume and its pan alone.
    void showLevels(int pad);
    void SyncLoopToggles(int pad);
    /// A pad above the last is ignored.
    void SetPadVolumeText(int pad, float value, bool notify);
    void SetPadPanText(int pad, float value, bool notify);

    // On the engine and on the toggles. A pad that is synced is always looping.
    void switchSynced(int pad, bool on);
    void switchLooping(int pad, bool on);
    /// Synced, Looping, Mute and Solo.
    void switchAllOff(int pad);

    /// With Shift the toggles of Synced and Looping set those of all pads. False when it is the command of
    /// another pane.
    bool command(int id, Modifiers held);
    /// False when it isn't a knob of a pad.
    bool knobTurned(int id);

private:
    void showLoopToggles(int pad, bool looping, bool synced);

    PaneParent& page_;
    PageControls& controls_;
};

/// All pads with Shift held, else only `pad`, which the result refers to.
std::span<const int> padsMeant(const int& pad, Modifiers held);

}  // namespace marnoth
