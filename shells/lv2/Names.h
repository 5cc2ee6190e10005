#pragma once

namespace marnoth {

/// The plug-ins, as hosts know them for ever. The bundle's files use the same.
inline constexpr const char* kStereoUri = "urn:marnoth:instrument";       ///< the mix
inline constexpr const char* kMultiUri = "urn:marnoth:instrument-multi";  ///< the mix and each pad by itself

/// What their state holds.
inline constexpr const char* kStateVersionUri = "urn:marnoth:stateVersion";
inline constexpr const char* kProjectUri = "urn:marnoth:project";

}  // namespace marnoth
