#pragma once

#include <cstdint>

#include "engine/model/GrainList.h"
#include "engine/render/BlockTime.h"
#include "platform/system/Overflow.h"
#include "seam/MusicalTime.h"

namespace marnoth {

/// A half-open range of time, in 16.16 ticks or samples.
struct TimeRange {
    std::int64_t from = 0;
    std::int64_t to = 0;
};

/// Which grains, and which parts of a grain list, sound in a range of time that is counted from the start of
/// a cycle; by one kind of time.
template <std::uint32_t kind>
class GrainSearch {
public:
    /// `all` is the reach of the whole list.
    GrainSearch(const GrainReach& all, TimeRange range, BlockTime& time) : range_(range), time_(time) {
        if (kind == kTicks16 && all.lastKeptStart != GrainReach::kBefore) keptFrom_ = earliestKept(all);
    }

    const TimeRange& range() const { return range_; }

    /// Where a grain ends that starts at `start`.
    std::int64_t endOf(const CGrooveEvent& grain, std::int64_t start) const {
        if (kind == kTicks16 && grain.keepsDuration()) return keptEnd(start, grain.GetLength(kSamples, 1));
        return plus(start, grain.GetLength(kind, 1));
    }

    /// False only when no grain of the part can sound. Conversions of time never run backward, so the last
    /// start with the longest duration ends behind all of them.
    bool maySound(const GrainReach& reach) const {
        const GrainReach::Span& span = reach.in(kind);
        if (span.firstStart >= range_.to) return false;
        if (span.lastEnd > range_.from) return true;
        if (kind != kTicks16 || reach.lastKeptStart < keptFrom_) return false;
        return keptEnd(reach.lastKeptStart, reach.longestKept) > range_.from;
    }

private:
    /// Where a grain that keeps its duration ends at the tempo in force.
    std::int64_t keptEnd(std::int64_t start, std::int64_t samples) const {
        return time_.toTicks(plus(time_.toSamples(start), samples));
    }

    /// Of the grains that keep their duration, those that start before this have ended before the range. It
    /// saves most parts the conversions; the margin is far beyond what these round.
    std::int64_t earliestKept(const GrainReach& all) const {
        constexpr std::int64_t kMarginSamples = 64;
        constexpr std::int64_t kMarginTicks = 1 << 16;
        const std::int64_t latestEnd = minus(time_.toSamples(range_.from), kMarginSamples);
        return minus(time_.toTicks(minus(latestEnd, all.longestKept)), kMarginTicks);
    }

    const TimeRange range_;
    BlockTime& time_;
    std::int64_t keptFrom_ = GrainReach::kNever;  ///< 16.16 ticks; without such grains none is late enough
};

}  // namespace marnoth
