#include "engine/render/SelectGrains.h"

#include <algorithm>

#include "platform/system/Overflow.h"

namespace marnoth {
namespace {

/// By what a track's times are read.
std::uint32_t kindOf(const CGrooveTrack& track) {
    return track.synced ? kTicks16 : kSamples;
}

/// Goes through the grains of one cycle, up to the first that starts behind the range.
template <std::uint32_t kind>
class CycleWalk {
public:
    CycleWalk(StreamEvents& events, const GrainReach& all, TimeRange range, std::int64_t base,
              BlockTime& time)
        : events_(events), search_(all, range, time), base_(base) {}

    /// False at the end of the walk.
    bool walk(const GrainPart& part) {
        if (part.isGrain()) return takeGrain(part.grain());
        const GrainReach* reach = part.reaches();
        const auto* const end = part.end();
        for (const auto* inner = part.begin(); inner != end; ++inner, ++reach) {
            // Where nothing sounds, a late start ends the walk all the same.
            const bool goesOn =
                search_.maySound(*reach) ? walk(**inner) : reach->in(kind).lastStart <= search_.range().to;
            if (!goesOn) return false;
        }
        return true;
    }
    bool found() const { return found_; }

private:
    bool takeGrain(const CGrooveEvent& grain) {
        const TimeRange& range = search_.range();
        const std::int64_t start = grain.GetStart(kind);
        if (start > range.to) return false;
        const std::int64_t end = search_.endOf(grain, start);
        if (end <= range.from || start >= range.to) return true;
        events_.Add({&grain, plus(start, base_), plus(end, base_), plus(std::max(range.from, start), base_),
                     plus(std::min(end, range.to), base_)});
        found_ = true;
        return true;
    }

    StreamEvents& events_;
    const GrainSearch<kind> search_;
    const std::int64_t base_;
    bool found_ = false;
};

template <std::uint32_t kind>
bool walkCycle(StreamEvents& events, const GrainPart& grains, TimeRange range, std::int64_t base,
               BlockTime& time) {
    CycleWalk<kind> walk(events, grains.reach, range, base, time);
    walk.walk(grains);
    return walk.found();
}

}  // namespace

std::int32_t selectGrains(StreamEvents& events, const CGrooveTrack& track, const PadPhase& phase,
                          const VoiceSpan& voice, bool ignoreLength, TimeRange range, BlockTime& time) {
    events.RemoveAll();
    const std::int64_t loop = track.lengthTicks;
    if (loop < 1) return 0;
    const std::int64_t origin = track.synced ? minus(voice.start % loop, loop) : voice.from;
    const TimeRange heard{std::max(range.from, voice.from), std::min(range.to, voice.end)};
    if (voice.length < 1 || heard.from >= heard.to) return 0;
    const bool hasLength = !track.looping && !ignoreLength;
    if (hasLength && heard.from > plus(track.GetLength(kindOf(track)), voice.from)) return -1;
    selectRange(events, track, phase, origin, heard, time);
    return events.GetSize();
}

std::int32_t selectRange(StreamEvents& events, const CGrooveTrack& track, const PadPhase& phase,
                         std::int64_t origin, TimeRange range, BlockTime& time) {
    // Only the pad that has just set the common zero counts from its own voice's start.
    if (track.synced && !phase.owner) origin = phase.origin;
    // A block longer than the loop plays the loop once.
    const std::int64_t period = std::max(track.GetLength(kindOf(track)), minus(range.to, range.from));
    if (period < 1) return 0;
    const std::int64_t cycle = minus(range.from, origin) / period;
    const std::int64_t a = minus(range.from, origin) % period;
    const std::int64_t b = minus(range.to, origin) % period;
    const bool crossesEnd = b <= a;

    if (!track.looping) {
        if (crossesEnd ? cycle != 0 : cycle >= 1) return 0;
        return collectCycle(events, track, origin, {a, crossesEnd ? period : b}, cycle, time);
    }
    if (!crossesEnd) return collectCycle(events, track, origin, {a, b}, cycle, time);
    const std::int32_t before = collectCycle(events, track, origin, {a, period}, cycle, time);
    const std::int32_t behind = collectCycle(events, track, origin, {0, b}, plus(cycle, 1), time);
    return before | behind;
}

std::int32_t collectCycle(StreamEvents& events, const CGrooveTrack& track, std::int64_t origin,
                          TimeRange range, std::int64_t cycle, BlockTime& time) {
    const GrainPart* const grains = track.grains().root();
    if (!grains) return 0;
    const std::int64_t base = plus(times(cycle, track.GetLength(kindOf(track))), origin);
    const bool found = track.synced ? walkCycle<kTicks16>(events, *grains, range, base, time)
                                    : walkCycle<kSamples>(events, *grains, range, base, time);
    return found ? 1 : 0;
}

}  // namespace marnoth
