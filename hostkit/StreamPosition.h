#pragma once

#include <cstdint>

#include "platform/graph/Graph.h"

namespace marnoth {

inline constexpr std::int64_t kTimeUnitsPerSecond = 10'000'000;  ///< a `REFERENCE_TIME` counts 100 ns

/// Rates above have frames shorter than the unit of a position.
inline constexpr std::uint32_t kHighestStreamRate = 10'000'000;
/// Farther positions don't fit in a `REFERENCE_TIME`: 28,000 years.
inline constexpr std::int64_t kFarthestStreamSecond = 900'000'000'000;

/// The time that comes back as exactly `frame` when it is truncated to frames: rounded away from zero.
/// `rate` is frames per second, 1 to `kHighestStreamRate`; `frame` no farther than `kFarthestStreamSecond`.
constexpr REFERENCE_TIME streamTimeOf(std::int64_t frame, std::uint32_t rate) {
    const std::int64_t frames = frame < 0 ? -frame : frame;
    const std::int64_t rest = frames % rate * kTimeUnitsPerSecond;
    const std::int64_t time = frames / rate * kTimeUnitsPerSecond + (rest + rate - 1) / rate;
    return frame < 0 ? -time : time;
}

}  // namespace marnoth
