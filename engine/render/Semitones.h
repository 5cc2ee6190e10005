#pragma once

#include <algorithm>
#include <cstdint>

#include "engine/model/GrooveTrack.h"

namespace marnoth {

inline constexpr std::int32_t kNoKey = -1;  ///< 0xFFFFFFFF: no project key, no root note
inline constexpr std::int32_t kSemitonesPerOctave = 12;

inline bool followsKey(const CGrooveTrack& track) {
    return track.followKey && track.rootNote != kNoKey;
}

/// By how much a track follows the project's key: the short way round, -6 to 5 for keys of one octave.
inline std::int32_t keyOffset(const CGrooveTrack& track, std::int32_t projectKey) {
    if (!followsKey(track) || projectKey == kNoKey) return 0;
    std::int64_t offset = std::int64_t{projectKey} - track.rootNote;
    if (offset > 5) offset -= kSemitonesPerOctave;
    if (offset < -6) offset += kSemitonesPerOctave;
    return static_cast<std::int32_t>(offset);
}

/// By how much a grain is transposed in all, `played` of it by the note.
inline std::int32_t semitonesOf(const CGrooveEvent& grain, const CGrooveTrack& track, std::int32_t projectKey,
                                std::int32_t played) {
    const auto own = static_cast<float>(grain.transpose) + static_cast<float>(keyOffset(track, projectKey));
    // The part before the point, kept far inside the 32-bit range.
    const auto whole = static_cast<std::int32_t>(std::clamp(own, -1e9f, 1e9f));
    return static_cast<std::int32_t>(std::int64_t{whole} + played);
}

}  // namespace marnoth
