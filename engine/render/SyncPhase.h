#pragma once

#include <cstdint>

#include "engine/model/PadPhase.h"

namespace marnoth {

/// From where synced pads count. With the transport running that is tick 0 of the project; while it stands,
/// the first synced pad to start while nothing sounds sets the common zero, and pads that start later count
/// from there.
struct SyncPhase {
    PadPhases pads{};
    std::int64_t anchor = 0;  ///< 16.16 ticks; the common zero while the transport stands

    PadPhase& of(std::int32_t pad) { return pads[static_cast<std::size_t>(pad)]; }

    /// The pad counts from `ticks16`, and so does whoever starts after it.
    void setZero(std::int32_t pad, std::int64_t ticks16) {
        anchor = ticks16;
        of(pad) = {1, ticks16};
    }
    /// The pad counts from the common zero.
    void join(std::int32_t pad) { of(pad) = {0, anchor}; }
};

}  // namespace marnoth
