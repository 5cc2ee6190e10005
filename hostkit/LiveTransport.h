#pragma once

#include <cstdint>
#include <optional>

namespace marnoth {

/// What a clock says of the start of a block.
struct LiveTransport {
    bool playing = false;
    std::int64_t frame = 0;       ///< on the clock's timeline; may be below 0. Not looked at while standing
    std::optional<double> tick;   ///< 960 to the beat, at `frame`; where it isn't told, the tempo says it
    std::optional<double> tempo;  ///< beats per minute; where it isn't told, the host's own holds
};

/// The tempos that a live host follows, in beats per minute. At any other, 0 and what is no number, the last
/// one holds.
inline constexpr double kSlowestLiveTempo = 1.0;
inline constexpr double kFastestLiveTempo = 1000.0;
inline constexpr double kDefaultLiveTempo = 120.0;

inline bool isLiveTempo(double beatsPerMinute) {
    return beatsPerMinute >= kSlowestLiveTempo && beatsPerMinute <= kFastestLiveTempo;
}

/// Whether the instrument can start at this tick: it has whole ones of 32 bits. Any other counts as not told.
inline bool isLiveTick(double tick) {
    return tick >= -2147483648.0 && tick <= 2147483647.0;
}

}  // namespace marnoth
