#pragma once

namespace marnoth {

/// What values of pads and grains are held to where they are set and shown.

inline constexpr float kLoudest = 2.0f;    ///< a factor, as volumes are
inline constexpr int kMostSemitones = 24;  ///< of a grain, up or down

}  // namespace marnoth
