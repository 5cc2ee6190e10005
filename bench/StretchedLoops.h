#pragma once

#include <cmath>
#include <cstdint>

#include "support/WaveFile.h"

/// What the benchmarks of the whole instrument play: loops made at 125 beats per minute, by a host at 100.
namespace marnoth::bench {

inline constexpr std::uint32_t kRate = 44100;
inline constexpr int kLoopBeats = 4;
inline constexpr double kHostTempo = 100.0;
inline constexpr std::int64_t kLoopFrames = kRate * kLoopBeats * 60 / 125;
/// Two rounds of the stretched loop.
inline constexpr std::int64_t kPassFrames = 2 * kLoopFrames * 5 / 4;

/// A stereo loop; the pitches of its sides are radians from frame to frame.
inline test::TempPath writeLoop(double level, double left, double right) {
    return test::WaveFile()
        .rate(kRate)
        .channels(2)
        .bits(16)
        .frames(kLoopFrames, [&](std::int64_t i, int c) { return level * std::sin((c ? right : left) * i); })
        .acid({.beats = kLoopBeats, .tempo = 125})
        .writeTemp();
}

}  // namespace marnoth::bench
