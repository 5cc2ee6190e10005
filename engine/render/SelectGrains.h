#pragma once

#include <cstdint>

#include "engine/model/GrooveTrack.h"
#include "engine/model/PadPhase.h"
#include "engine/render/BlockTime.h"
#include "engine/render/GrainSearch.h"
#include "engine/render/PreAllocArray.h"
#include "engine/render/Voice.h"

namespace marnoth {

inline constexpr std::int32_t kStreamEvents = 100;  ///< grains of one pad in one block

using StreamEvents = CPreAllocArray<StreamEventInfo>;

/// When a voice plays a track, in the time by which the track is played: 16.16 ticks, or samples.
struct VoiceSpan {
    std::int64_t start = 0;  ///< phase reference
    std::int64_t end = 0;
    std::int64_t length = 0;  ///< below 1: it doesn't
    std::int64_t from = 0;    ///< nothing before this time plays
};

/// Adds to `events` the grains of `track` that sound in `range` of the block's timeline, loop repetitions
/// included; gives their count, or -1 when a track that doesn't loop has played out. `ignoreLength` keeps
/// such a track alive. A pad that isn't synced counts in samples from its voice's start, a synced one in
/// ticks from `phase`. A full list drops the rest.
std::int32_t selectGrains(StreamEvents& events, const CGrooveTrack& track, const PadPhase& phase,
                          const VoiceSpan& voice, bool ignoreLength, TimeRange range, BlockTime& time);

/// The same without regard to a voice: `origin` is the zero of the loop unless the common zero counts. 1 if
/// any grain was found.
std::int32_t selectRange(StreamEvents& events, const CGrooveTrack& track, const PadPhase& phase,
                         std::int64_t origin, TimeRange range, BlockTime& time);

/// The grains of one cycle of the loop whose zero is `origin`, `range` counted from the cycle's start. Goes
/// through them in order up to the first that starts behind the range; what can't sound is passed over in
/// large parts, so the cost is that of what sounds. 1 if any grain was found.
std::int32_t collectCycle(StreamEvents& events, const CGrooveTrack& track, std::int64_t origin,
                          TimeRange range, std::int64_t cycle, BlockTime& time);

}  // namespace marnoth
