#include "engine/render/SelectGrains.h"

#include <algorithm>

#include "platform/system/Overflow.h"

namespace marnoth {
namespace {

/// By what a track's times are read.
std::uint32_t kindOf(const CGrooveTrack& track) {
    return track.synced ? kTicks16 : kSamples;
}

/// Goes through the grains of one cycle, by one kind of time.
template <std::uint32_t kind>
class CycleWalk {
public:
    CycleWalk(StreamEvents& events, const GrainReach& all, TimeRange range, std::int64_t base,
              BlockTime& time)
        : events_(events), range_(range), base_(base), time_(time) {
        if (kind == kTicks16 && all.lastKeptStart != GrainReach::kBefore) keptFrom_ = earliestKept(all);
    }

    /// False at the end of the walk: the first grain that starts behind the range.
    bool walk(const GrainPart& part) {
        if (part.isGrain()) return takeGrain(part.grain());
        const GrainReach* reach = part.reaches();
        const auto* const end = part.end();
        for (const auto* inner = part.begin(); inner != end; ++inner, ++reach) {
            // Where nothing sounds, a late start ends the walk all the same.
            const bool goesOn = maySound(*reach) ? walk(**inner) : reach->in(kind).lastStart <= range_.to;
            if (!goesOn) return false;
        }
        return true;
    }
    bool found() const { return found_; }

private:
    bool takeGrain(const CGrooveEvent& grain) {
        const std::int64_t start = grain.GetStart(kind);
        if (start > range_.to) return false;
        const std::int64_t end = endOf(grain, start);
        if (end <= range_.from || start >= range_.to) return true;
        events_.Add({&grain, plus(start, base_), plus(end, base_), plus(std::max(range_.from, start), base_),
                     plus(std::min(end, range_.to), base_)});
        found_ = true;
        return true;
    }

    std::int64_t endOf(const CGrooveEvent& grain, std::int64_t start) {
        if (kind == kTicks16 && grain.keepsDuration()) return keptEnd(start, grain.GetLength(kSamples, 1));
        return plus(start, grain.GetLength(kind, 1));
    }

    /// Where a grain that keeps its duration ends at the tempo in force.
    std::int64_t keptEnd(std::int64_t start, std::int64_t samples) {
        return time_.toTicks(plus(time_.toSamples(start), samples));
    }

    /// Of the grains that keep their duration, those that start before this have ended before the range. It
    /// saves most parts the conversions; the margin is far beyond what these round.
    std::int64_t earliestKept(const GrainReach& all) {
        constexpr std::int64_t kMarginSamples = 64;
        constexpr std::int64_t kMarginTicks = 1 << 16;
        const std::int64_t latestEnd = minus(time_.toSamples(range_.from), kMarginSamples);
        return minus(time_.toTicks(minus(latestEnd, all.longestKept)), kMarginTicks);
    }

    /// False only when no grain of the part can sound. Conversions of time never run backward, so the last
    /// start with the longest duration ends behind all of them.
    bool maySound(const GrainReach& reach) {
        const GrainReach::Span& span = reach.in(kind);
        if (span.firstStart >= range_.to) return false;
        if (span.lastEnd > range_.from) return true;
        if (kind != kTicks16 || reach.lastKeptStart < keptFrom_) return false;
        return keptEnd(reach.lastKeptStart, reach.longestKept) > range_.from;
    }

    StreamEvents& events_;
    const TimeRange range_;
    const std::int64_t base_;
    BlockTime& time_;
    std::int64_t keptFrom_ = GrainReach::kNever;  ///< 16.16 ticks; without such grains none is late enough
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
