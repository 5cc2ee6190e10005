#pragma once

#include <cstdint>
#include <utility>

#include "platform/system/Overflow.h"
#include "seam/MusicalTime.h"

namespace marnoth {

class CGrooveEvent;
class CGrooveTrack;

/// The records of the render. All are fixed in size, made in advance, and touched only under the engine's
/// lock.

/// Where a play list entry comes from.
enum class PlayKind : std::uint32_t { binAudition = 0, pad = 1, grainAudition = 2 };

/// One pad (or Loop Bin file, or auditioned grain) that a voice is to play in this block.
struct TrackPlayInfo {
    PlayKind kind = PlayKind::pad;
    std::int32_t pad = 0;                 ///< meaningful for `PlayKind::pad` only
    const CGrooveTrack* track = nullptr;  ///< of the model that the block plays; not owned
    std::int32_t semitones = 0;           ///< note minus root key; 0 for everything but notes
};

/// One grain to render in this block. The four times lie on the block's timeline, loop repetitions
/// added: 16.16 ticks on a synced pad, samples on any other.
struct StreamEventInfo {
    const CGrooveEvent* grain = nullptr;  ///< of the model that the block plays; not owned
    std::int64_t start = 0;               ///< of this occurrence of the grain
    std::int64_t end = 0;
    std::int64_t clipStart = 0;  ///< the part to render now
    std::int64_t clipEnd = 0;
};

/// One of a voice's two lanes of times, in 16.16 ticks.
struct VoiceLane {
    std::int64_t start = 0;     ///< phase reference of a synced pad
    std::int64_t end = 0;       ///< open-ended until known
    std::int64_t length = 0;    ///< 0: the lane is dead; open-ended until known
    std::int64_t position = 0;  ///< advanced by every block's length
    std::int64_t from = 0;      ///< nothing before this time plays

    /// The end isn't known: end and length open.
    void openEnd() { end = length = kOpenEnded; }
    /// The lane plays no more.
    void kill() { end = length = 0; }
    /// The lane's end is known and reached. An end of 0 is that of a dead lane.
    bool ranOut() const { return position >= end && end >= 1; }
};

/// The playing state of a voice: a note, a pad played from the page, an auditioned file, or an auditioned
/// grain. The gate lane serves pads that end with the note, the shot lane one-shot pads; a note may sound
/// both kinds at once.
struct VoiceState {
    std::uint32_t startPending = 0;  ///< requested, and not yet taken up by the render
    std::uint32_t stopRequest = 0;   ///< asks the render to end the shot lane
    std::uint32_t releasing = 0;     ///< the end of the voice is known
    std::uint32_t finished = 0;      ///< the render found nothing left to play; set once
    std::uint32_t fromPage = 0;      ///< started from the page: passes the pad gates
    std::uint32_t ignoreLength = 0;  ///< keeps a track that doesn't loop alive past its length (auditions)
    VoiceLane gate;
    VoiceLane shot;

    /// Both lanes begin at `ticks16`, with no end in sight.
    void startBoth(std::int64_t ticks16);
    void endBoth();
    /// Both positions move on by the length of a block.
    void advance(std::int64_t ticks16) {
        gate.position = plus(gate.position, ticks16);
        shot.position = plus(shot.position, ticks16);
    }
    /// Both positions are there.
    void moveTo(std::int64_t ticks16) { gate.position = shot.position = ticks16; }
    /// The pad, or the file, is to be started by the next block.
    void requestStart();
    /// The same for an audition, which plays on past the length of its track.
    void requestAudition();
};

/// Reads a request and takes it away.
inline bool take(std::uint32_t& request) {
    return std::exchange(request, 0) != 0;
}

/// The toggle of a one-shot pad that is played from notes.
struct PadGate {
    std::uint32_t active = 0;
    std::uint32_t previous = 0;         ///< `active` before the last note on this pad
    const VoiceState* owner = nullptr;  ///< the note that last switched it on; not owned
};

}  // namespace marnoth
