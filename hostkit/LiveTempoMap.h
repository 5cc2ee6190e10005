#pragma once

#include <array>
#include <cstddef>

#include "hostkit/TempoService.h"

namespace marnoth {

/// The tempo of a running clock, as its changes come. It begins anew where the transport starts or jumps, and
/// keeps what was until then: a note keeps its start in ticks, which every block turns into frames, so a map
/// without a past would move what sounds.
///
/// Its room is fixed and nothing here allocates. When it is full, short stretches are joined into longer ones
/// of their mean tempo: where those begin and end the past stays where it was, and in between it moves by a
/// fraction of a frame.
///
/// Changed and asked by the thread that renders. The instrument asks under its lock, on that thread and, for
/// what fades out when something is removed or replaced, on others: it is changed under that lock.
class LiveTempoMap : public TempoService {
public:
    static constexpr std::size_t kRoom = 2048;

    /// `beatsPerMinute`, finite and above 0, holds from tick 0 at second 0.
    explicit LiveTempoMap(double beatsPerMinute) { restart(0.0, 0.0, beatsPerMinute); }

    /// Forgets everything: `tick` is at `seconds`, and the tempo holds before and behind.
    void restart(double tick, double seconds, double beatsPerMinute);

    /// From `seconds` on, which is `tick` from now on, the tempo is `beatsPerMinute`. What the map said of
    /// that time and later is forgotten. Where `tick` isn't what the map had said, the two stretches overlap
    /// or leave a gap: time before `seconds` stays as it was told.
    void change(double tick, double seconds, double beatsPerMinute);

protected:
    std::span<const TempoStretch> stretches() const override { return {stretches_.data(), count_}; }

private:
    void thinPast();

    std::array<TempoStretch, kRoom> stretches_;
    std::size_t count_ = 0;
};

}  // namespace marnoth
