#pragma once

#include <cstdint>

#include "platform/system/Overflow.h"
#include "project/ProjectRecords.h"
#include "seam/MusicalTime.h"

namespace marnoth {

/// Frame numbers of a project at another rate. `ratio` is new rate / old rate; a ratio of 1 changes nothing.
/// What is beyond any music saturates.

inline std::int64_t scaledFrames(std::int64_t frames, double ratio) {
    return ratio == 1.0 ? frames : roundHalfUp(static_cast<double>(frames) * ratio);
}

/// Where a grain ends is rounded, not how long it is: grains that touch still touch afterwards. The tail's
/// length stays, since the tail wave determines it; ticks stay too.
inline GrainSettings scaledGrain(GrainSettings record, double ratio) {
    if (ratio == 1.0) return record;
    const std::int64_t end = plus(record.startSamples, record.lengthSamples);
    record.startSamples = scaledFrames(record.startSamples, ratio);
    record.lengthSamples = minus(scaledFrames(end, ratio), record.startSamples);
    record.sampleOffset = scaledFrames(record.sampleOffset, ratio);
    return record;
}

/// The loop's length in frames. In ticks it stays.
inline TrackSettings scaledTrack(TrackSettings record, double ratio) {
    record.lengthSamples = scaledFrames(record.lengthSamples, ratio);
    return record;
}

}  // namespace marnoth
