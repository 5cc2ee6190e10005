#pragma once

#include "tools/Loop.h"

namespace marnoth::tools {

/// Four loops that sound together, in A minor, whatever their own lengths and tempos. Their levels leave room
/// for all of them at once.

Loop drums();       ///< two bars at 125, stereo
Loop percussion();  ///< one bar at 100, stereo, with a swing and markers on its strokes
Loop bass();        ///< four bars at 120, mono, with A as its root
Loop chords();      ///< four bars at 90, stereo, to be cut in half notes

}  // namespace marnoth::tools
