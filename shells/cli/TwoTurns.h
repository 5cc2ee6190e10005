#pragma once

#include <cstdint>

#include "shellkit/midi/MidiFile.h"

namespace marnoth {

/// The first `turnTicks` ticks of a part, at least 1, and the same once more behind them. A note that lasts
/// beyond its turn goes on in the next.
MidiPart twoTurns(const MidiPart& part, std::int32_t turnTicks);

}  // namespace marnoth
