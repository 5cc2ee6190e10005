#pragma once

#include "tools/Loop.h"

namespace marnoth::tools {

/// The instruments of the demo. Each gives one sound that begins at full level, around 1, and fades out.

Voice kick();
Voice snare();
/// `decay` is how fast it dies away, per second.
Voice hat(double decay);
Voice shaker();
/// A skin drum of this pitch in Hz.
Voice conga(double pitch);
Voice clave();
/// A plucked string of a synthesiser, `seconds` long. `note` is a MIDI note.
Voice bassNote(int note, double seconds);
/// A soft chord of MIDI notes, `seconds` long with its slow beginning and end. `side` is -1 or 1: two sides
/// that differ a little make it wide.
Voice chord(const std::vector<int>& notes, double seconds, int side);

}  // namespace marnoth::tools
