#pragma once

#include <cstdint>

namespace marnoth {

/// The limits of the whole instrument, for engine, project, editor and shells alike.

inline constexpr std::int32_t kPads = 16;
inline constexpr std::int32_t kBinFiles = 16;  ///< most files that the Loop Bin holds
/// Output pins of the pads, "Chan 1" to "Chan 16"; as an output of a pad 1 to 16, 0 being the mix.
inline constexpr std::int32_t kChannelPins = 16;
inline constexpr std::int32_t kOutputPins = 1 + kChannelPins;  ///< the mix and the channels
inline constexpr std::int32_t kMidiChannels = 16;
inline constexpr std::int32_t kHighestKey = 127;       ///< of MIDI
inline constexpr std::int32_t kHighestVelocity = 127;  ///< of MIDI

/// What a loop, and any other file, may be at most, measured at the file's own rate.
inline constexpr std::uint32_t kMostLoopBeats = 64;
inline constexpr double kLongestLoopSeconds = 128.0;
inline constexpr double kLongestShotSeconds = 30.0;

}  // namespace marnoth
