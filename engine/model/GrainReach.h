#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "engine/model/GrooveEvent.h"

namespace marnoth {

/// Where some grains lie, taken together: enough to pass over all of them when none can sound.
struct GrainReach {
    static constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();
    static constexpr std::int64_t kBefore = std::numeric_limits<std::int64_t>::min();

    /// In one kind of time, 16.16 ticks or samples.
    struct Span {
        std::int64_t firstStart = kNever;
        std::int64_t lastStart = kBefore;
        std::int64_t lastEnd = kBefore;  ///< in ticks of those grains alone that are as long as they say

        void add(const Span& other) {
            firstStart = std::min(firstStart, other.firstStart);
            lastStart = std::max(lastStart, other.lastStart);
            lastEnd = std::max(lastEnd, other.lastEnd);
        }
    };

    Span ticks;
    Span samples;
    // Grains that keep their duration, whose ends in ticks move with the tempo.
    std::int64_t lastKeptStart = kBefore;  ///< 16.16 ticks
    std::int64_t longestKept = 0;          ///< samples, tails included

    static GrainReach of(const CGrooveEvent& grain) {
        const auto span = [&](std::uint32_t kind) {
            return Span{grain.GetStart(kind), grain.GetStart(kind), grain.GetEnd(kind, 1)};
        };
        GrainReach reach{span(kTicks16), span(kSamples)};
        if (!grain.keepsDuration()) return reach;
        reach.ticks.lastEnd = kBefore;
        reach.lastKeptStart = grain.startTicks;
        reach.longestKept = grain.GetLength(kSamples, 1);
        return reach;
    }

    void add(const GrainReach& other) {
        ticks.add(other.ticks);
        samples.add(other.samples);
        lastKeptStart = std::max(lastKeptStart, other.lastKeptStart);
        longestKept = std::max(longestKept, other.longestKept);
    }

    const Span& in(std::uint32_t kind) const { return kind == kTicks16 ? ticks : samples; }
};

}  // namespace marnoth
