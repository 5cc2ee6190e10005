#pragma once

#include <cstdint>

namespace marnoth {

/// What a pad, or a file of the Loop Bin, is set to: the one value that tracks, projects and undo hold alike.
/// The defaults are those of an empty pad.
struct TrackSettings {
    std::int64_t lengthSamples = 0;  ///< loop length, frames
    std::int64_t lengthTicks = 0;    ///< loop length, 16.16 ticks
    std::uint32_t looping = 0;
    std::uint32_t synced = 0;  ///< follows the host's tempo and position
    std::uint32_t mute = 0;
    std::uint32_t solo = 0;
    std::uint32_t oneShot = 1;  ///< a note starts the pad and its end doesn't stop it
    std::uint32_t tailOn = 0;
    std::uint32_t followKey = 0;    ///< transposes with the project's key
    std::int32_t rootNote = -1;     ///< 0 to 11 counted from A, -1 none; up to 127 is kept
    std::uint32_t output = 0;       ///< 0 the mix, 1 to 16 the channel pins
    std::int32_t midiChannel = -1;  ///< 0 to 15, -1 omni
    float volume = 1.0f;            ///< 0 to 2
    float pan = 0.5f;               ///< 0 to 1

    /// Ignored unless -1 to 127.
    void SetRootNote(std::int32_t note);

    /// What a load makes of saved settings: a negative length counts as 0, a root note or an output that
    /// there isn't as none.
    TrackSettings sanitized() const;

    /// What an empty pad takes over from the file or the pad that its grains come from: lengths, looping,
    /// synced, follow-key and root note. A root note that there isn't leaves the pad's own.
    void takeOver(const TrackSettings& source);
};

}  // namespace marnoth
