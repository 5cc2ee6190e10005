#pragma once

#include <cstdint>
#include <optional>

#include "platform/drawing/Geometry.h"
#include "seam/IGrooveSampler.h"

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
    /// True when the press took hold of something: of a key, whose note `note` is from then on, or of a
    /// handle above the keys, which leaves `note` alone. `drag` tells whether a drag is open from now on.
    bool OnKeyMapPress(Point point, const KeyMapRecord& entry, int* note, bool* drag);
    /// Changes `entry` by what is held; the keys are held to no range and in no order here. With shift all
    /// three move alike. Moves the keyboard instead when no key is held; its ends are found by the next
    /// `DrawKeyMap`.
    void OnKeyMapDrag(Point point, bool shiftHeld, KeyMapRecord* entry);
    void endDrag();
    /// Draws within its own clip; `clip` is what the caller has set and finds again.
    void DrawKeyMap(Surface& surface, const Rect& clip, const KeyMapRecord& entry, Font& font);

private:
    /// Where the handles go, client pixels; nothing when the key isn't drawn.
    struct Handles {
        std::optional<int> low;
        std::optional<int> high;
    };
    struct Notes {
        int first;
        int last;
    };

    float unit() const;
    float unitsAt(int x) const;
    int lowEdgeNote(int x) const;
    int highEdgeNote(int x) const;
    int heldNote(int x) const;
    void holdKey(int note, const KeyMapRecord& entry);
    bool pressHandle(int x, const KeyMapRecord& entry);
    Rect handleBand() const { return {rect_.left, rect_.top - 6, rect_.right, rect_.top}; }

    void holdScroll();
    Notes drawnNotes() const;
    /// The left edge of a white key, counted from the keyboard's begin.
    int whiteKeyX(int index) const;
    Rect whiteKey(int halfUnit) const;
    Rect blackKey(int halfUnit) const;
    void drawWhiteKeys(Surface& surface, const KeyMapRecord& entry, Handles& handles) const;
    void drawBlackKeys(Surface& surface, const KeyMapRecord& entry, Handles& handles) const;
    void drawOctave(Surface& surface, int octave, int keyLeft) const;
    void drawHandle(Surface& surface, int x) const;

    Rect rect_;
    int octaves_ = 6;  ///< that fit into the rectangle
    int scroll_ = 0;   ///< pixels of the keyboard left of the rectangle
    int scrollAtPress_ = 0;
    int pressX_ = 0;
    bool draggingRoot_ = false;
    bool draggingLow_ = false;
    bool draggingHigh_ = false;
    bool handleDrag_ = false;  ///< the press was on a handle above the keys
    bool panning_ = false;
};

}  // namespace marnoth
