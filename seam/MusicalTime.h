#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace marnoth {

/// 16.16 ticks: a tick is 1/960 of a beat, held in fixed point.
inline constexpr std::int64_t kTicksPerBeat = 960;
inline constexpr std::int64_t kTicks16PerBeat = kTicksPerBeat << 16;  // 62914560

/// A time in 16.16 ticks or samples whose end isn't known yet.
inline constexpr std::int64_t kOpenEnded = 0x7FFFFFFF0000;

/// How the accessors of tracks and grains read a time. Any other value reads as 0 and writes nothing.
enum TimeKind : std::uint32_t {
    kWholeTicks = 0,  ///< reading only
    kTicks16 = 1,
    kSamples = 3,
};

/// Seconds that one 16.16 tick lasts at one beat per minute: 60 / `kTicks16PerBeat`, which is 2^-20.
inline constexpr double kSecondsPerTick16AtOneBpm = 9.5367431640625e-7;

/// Tempo of a track without a length, in beats per minute.
inline constexpr double kDefaultTrackTempo = 100.0;

/// Adds a half and truncates, the rounding of all frame and tick numbers derived from files. What is beyond
/// any music stays at 2^62 on either side, and what isn't a number is 0.
inline std::int64_t roundHalfUp(double value) {
    constexpr double kFarthest = 0x1p62;
    if (std::isnan(value)) return 0;
    return static_cast<std::int64_t>(std::clamp(value, -kFarthest, kFarthest) + 0.5);
}

}  // namespace marnoth
