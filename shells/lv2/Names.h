#pragma once

#include <array>

namespace marnoth {

/// The plug-ins, as hosts know them for ever. The bundle's files use the same.
inline constexpr const char* kStereoUri = "urn:marnoth:instrument";       ///< the mix
inline constexpr const char* kMultiUri = "urn:marnoth:instrument-multi";  ///< the mix and each pad by itself

/// Their page.
inline constexpr const char* kPageUri = "urn:marnoth:page";

/// What their state holds.
inline constexpr const char* kStateVersionUri = "urn:marnoth:stateVersion";
inline constexpr const char* kProjectUri = "urn:marnoth:project";
inline constexpr const char* kViewUri = "urn:marnoth:view";

/// What a host automates: pads 1 to 16 and, behind a colon, one of these.
inline constexpr const char* kPadUri = "urn:marnoth:pad";
inline constexpr std::array<const char*, 4> kPadParameterNames{"level", "pan", "mute", "solo"};

}  // namespace marnoth
