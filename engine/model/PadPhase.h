#pragma once

#include <array>
#include <cstdint>

#include "seam/Limits.h"

namespace marnoth {

/// From where a synced pad counts its loop. The render writes it; undo keeps it with the pads.
struct PadPhase {
    std::uint32_t owner =
        0;  ///< 1 until the first selection of the voice by which this pad set the common zero
    std::int64_t origin = 0;  ///< zero of the loop, 16.16 ticks
};

using PadPhases = std::array<PadPhase, kPads>;

}  // namespace marnoth
