#pragma once

#include <cstdint>

#include "engine/IGrooveSampler.h"
#include "platform/Geometry.h"

namespace marnoth {

class Font;
class Surface;

/// A piano keyboard of 128 notes on which low, high and root key of a key map entry are dragged. Wider than
/// its rectangle, and dragged sideways by keys that mean nothing. Not a control: the page routes what it
/// needs.
class CKeyMapEditor {
public:
    void setUp(const Rect& rect, int octaves);

    /// The note whose key lies at a client x, 0 to 127.
    int NoteFromX(int x) const;
    /// `drag` tells whether a drag is open from now on.
    bool OnKeyMapPress(Point point, const KeyMapRecord& entry, int* note, bool* drag);
    /// Changes `entry` by what is held; nothing is bounded here.
    void OnKeyMapDrag(Point point, bool shiftHeld, KeyMapRecord* entry);
    void endDrag();
    /// Draws within its own clip; `clip` is what the caller has set and finds again.
    void DrawKeyMap(Surface& surface, const Rect& clip, const KeyMapRecord& entry, Font& font);

private:
    Rect rect_;
    int octaves_ = 6;
    int scroll_ = 0;
    int scrollAtPress_ = 0;
    int pressX_ = 0;
    bool draggingRoot_ = false;
    bool draggingLow_ = false;
    bool draggingHigh_ = false;
    bool handleDrag_ = false;  ///< the press was on a handle above the keys
    bool panning_ = false;
};

}  // namespace marnoth
