#pragma once

#include <array>

#include "engine/model/GrooveTrack.h"
#include "seam/Limits.h"

namespace marnoth {

/// The sixteen pads, by their index.
using Pads = std::array<CGrooveTrack, kPads>;

}  // namespace marnoth
