#pragma once

#include <vector>

#include "hostkit/TempoService.h"

namespace marnoth {

/// The tempo of a sequence: constant from change to change, counted from tick 0. Grows with its changes.
///
/// Changes are made by the host's own thread, between blocks.
class TempoMap : public TempoService {
public:
    /// `beatsPerMinute`, finite and above 0, holds from tick 0.
    explicit TempoMap(double beatsPerMinute) : stretches_{{0.0, 0.0, beatsPerMinute}} {}

    /// From `tick` on the tempo is `beatsPerMinute`. False, with nothing changed, when `tick` is below 0 or
    /// not behind the last change, or when the tempo isn't one.
    bool addChange(std::int32_t tick, double beatsPerMinute);

protected:
    std::span<const TempoStretch> stretches() const override { return stretches_; }

private:
    std::vector<TempoStretch> stretches_;
};

}  // namespace marnoth
