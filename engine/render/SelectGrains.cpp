#include <algorithm>

#include "engine/GrooveSampler.h"
#include "platform/system/Overflow.h"

namespace marnoth {
namespace {

/// The end of a grain that starts at `start`, in `kind`. A grain that isn't cut on the beat, or plays its
/// tail, keeps its natural duration at any tempo.
std::int64_t endOf(const CGrooveEvent& grain, std::int64_t start, std::uint32_t kind,
                   CPziSynthContext& context) {
    const bool keepsDuration = kind == kTicks16 && (!grain.tempoLocked || grain.playsTail());
    if (!keepsDuration) return plus(start, grain.GetLength(kind, 1));
    return context.SamplesToTicks(plus(context.TicksToSamples(start), grain.GetLength(kSamples, 1)));
}

}  // namespace

std::int32_t CGrooveSampler::SelectGrains(CGrooveTrack& track, std::int64_t rangeStart, std::int64_t rangeEnd,
                                          VoiceState& voice) {
    streamEvents.RemoveAll();
    const std::int64_t loop = track.lengthTicks;
    if (loop < 1 || silencedBySolo(track)) return 0;

    VoiceLane lane = track.oneShot ? voice.shot : voice.gate;
    std::uint32_t kind = kTicks16;
    std::int64_t origin = minus(lane.start % loop, loop);
    if (!track.synced) {
        kind = kSamples;
        origin = lane.from = voice.sampleFrom;
        lane.end = voice.sampleEnd;
        lane.length = voice.sampleLength;
    }
    const std::int64_t lower = std::max(rangeStart, lane.from);
    const std::int64_t upper = std::min(rangeEnd, lane.end);
    if (lane.length < 1 || lower >= upper) return 0;
    const bool hasLength = !track.looping && !voice.ignoreLength;
    if (hasLength && lower > plus(track.GetLength(kind), lane.from)) return -1;

    track.SelectRange(streamEvents, origin, lower, upper, kind);
    return streamEvents.GetSize();
}

std::int32_t CGrooveTrack::SelectRange(CPreAllocArray<StreamEventInfo>& events, std::int64_t origin,
                                       std::int64_t from, std::int64_t to, std::uint32_t kind) {
    // Only the pad that has just set the common zero counts from its own voice's start.
    if (synced && !phaseOwner) origin = phaseOrigin;
    // A block longer than the loop plays the loop once.
    const std::int64_t period = std::max(GetLength(kind), minus(to, from));
    if (period < 1) return 0;
    const std::int64_t cycle = minus(from, origin) / period;
    const std::int64_t a = minus(from, origin) % period;
    const std::int64_t b = minus(to, origin) % period;
    const bool crossesEnd = b <= a;

    if (!looping) {
        if (crossesEnd ? cycle != 0 : cycle >= 1) return 0;
        return CollectCycle(events, origin, a, crossesEnd ? period : b, cycle, kind);
    }
    if (!crossesEnd) return CollectCycle(events, origin, a, b, cycle, kind);
    const std::int32_t before = CollectCycle(events, origin, a, period, cycle, kind);
    const std::int32_t behind = CollectCycle(events, origin, 0, b, plus(cycle, 1), kind);
    return before | behind;
}

std::int32_t CGrooveTrack::CollectCycle(CPreAllocArray<StreamEventInfo>& events, std::int64_t origin,
                                        std::int64_t from, std::int64_t to, std::int64_t cycle,
                                        std::uint32_t kind) {
    const std::int64_t base = plus(times(cycle, GetLength(kind)), origin);
    std::int32_t found = 0;
    for (const auto& grain : grains_) {
        const std::int64_t start = grain->GetStart(kind);
        if (start > to) break;
        const std::int64_t end = endOf(*grain, start, kind, *context);
        if (end <= from || start >= to) continue;
        events.Add({grain.get(), plus(start, base), plus(end, base), plus(std::max(from, start), base),
                    plus(std::min(end, to), base)});
        found = 1;
    }
    return found;
}

}  // namespace marnoth
