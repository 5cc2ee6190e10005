#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "platform/drawing/Geometry.h"
#include "seam/Limits.h"

namespace marnoth {

struct TimeScale;

/// A grain that was painted last, and where.
struct EventPlotInfo {
    std::int32_t grain = 0;  ///< index on its pad or in its Loop Bin file
    std::int64_t start = 0;  ///< 16.16 ticks; pad grains only
    Rect rect;               ///< client pixels; of a tail grain too its span of time
    std::int32_t tail = 0;   ///< the grain's tail flag
    std::int64_t end = 0;    ///< 16.16 ticks; pad grains only
};

using EventPlot = std::vector<EventPlotInfo>;
using PadPlots = std::array<EventPlot, kPads>;  ///< in the order of the pads' grains, thus by start

inline constexpr int kTailGrainWidth = 15;  ///< pixels, whatever its length

/// The grain of a pad's `plot` that lies at `x` by its times and by `scale`, as an index into it; -1 for
/// none. `guess` is where to begin. Of overlapping grains the later one wins to the right of the guess, the
/// nearest earlier one to its left.
std::int32_t hitPlot(const TimeScale& scale, const EventPlot& plot, std::int32_t guess, int x);

/// Where to begin for a tick of a loop of `loopTicks`: grains are assumed to spread evenly. `count` above 0.
std::int32_t guessGrain(std::int64_t tick, std::int64_t loopTicks, std::int32_t count);

}  // namespace marnoth
