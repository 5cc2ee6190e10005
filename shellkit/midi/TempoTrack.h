#pragma once

#include <cstdint>
#include <vector>

namespace marnoth {

/// From `tick` (960 to the beat) on the tempo is `beatsPerMinute`.
struct TempoChange {
    std::int32_t tick = 0;
    double beatsPerMinute = 120.0;
};

/// The tempo of a piece, piecewise constant. Never empty: the first change stands at tick 0, and ticks rise.
class TempoTrack {
public:
    explicit TempoTrack(double beatsPerMinute = 120.0) : changes_{{0, beatsPerMinute}} {}

    /// Adds a change behind all others. One at the tick of the last takes its place.
    void add(std::int32_t tick, double beatsPerMinute);
    /// Seconds from tick 0 to a position in ticks, which may lie between two.
    double seconds(double ticks) const;

    const std::vector<TempoChange>& changes() const { return changes_; }

private:
    std::vector<TempoChange> changes_;
};

}  // namespace marnoth
