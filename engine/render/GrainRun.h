#pragma once

#include <cstdint>

#include "engine/model/GrooveTrack.h"
#include "platform/com/Com.h"

namespace marnoth {

/// A stretch of one grain, placed in a block.
struct GrainRun {
    const CGrooveEvent* grain = nullptr;
    std::int32_t semitones = 0;
    std::int64_t targetFrames = 0;  ///< that the whole grain fills
    std::int32_t pos = 0;           ///< frame of the grain at which the run begins
    std::int64_t destFrame = 0;     ///< frame of the block at which it goes
    std::int64_t count = 0;         ///< frames

    /// `frames` of its frames from `first` on.
    GrainRun part(std::int64_t first, std::int64_t frames) const;
    /// Adds it to the block that begins at `dest`, at the level and pan of its pad.
    void render(float* dest, const WAVEFORMATEX& format, const CGrooveTrack& track, Ramps ramps) const;
    /// The same at another level and pan.
    void render(float* dest, const WAVEFORMATEX& format, float volume, float pan, Ramps ramps) const;
};

}  // namespace marnoth
