#pragma once

#include <cstdint>

#include "dsp/SourceWave.h"
#include "dsp/Stretch.h"

/// The inner loops of the transposed render. Internal to this folder.
namespace marnoth::shift {

/// A crossfade, in source frames.
struct Fade {
    std::int64_t start = 0;   ///< where it begins
    std::int64_t length = 0;  ///< 0: no crossfade
    std::int64_t offset = 0;  ///< from what fades out to what fades in
};

/// A run of target frames, all plain or all inside one crossfade. Target frame i plays the source at
/// i * `speed`, between two frames.
struct Run {
    SourceWave wave;        ///< 1 or 2 channels
    std::int64_t base = 0;  ///< the frame of `wave` that is source frame 0
    double speed = 1;
    std::int64_t begin = 0;  ///< target frames, `begin` below `end`
    std::int64_t end = 0;
    float* dest = nullptr;          ///< where target frame `begin` goes
    std::int32_t destChannels = 0;  ///< 2 is stereo, all else mono
    StereoGain gain;
    Fade fade;
};

/// The source frame that a target frame plays, between it and the next.
inline std::int64_t frameAt(std::int64_t target, double speed) {
    return static_cast<std::int64_t>(static_cast<double>(target) * speed);
}

/// Adds the run to its destination, frame by frame. Reads outside the wave take its first or its guard frame,
/// each frame for itself.
void renderPlain(const Run& run);

/// The same bits, in the widest vectors that there are for the run.
void renderRun(const Run& run);

/// Renders whole vectors from the beginning of a run that `isForVectors`; gives how many frames that were.
using VectorForm = std::int32_t (*)(const Run& run);

/// Whether the run stays inside the wave and all its numbers are small enough for lanes of 32 bits.
bool isForVectors(const Run& run);

/// The form for the widest vectors of this processor; null where there is none.
VectorForm widestForm();

#if defined(__x86_64__)
/// Two, four and eight frames at once. The first is there on every 64-bit x86 processor, the others where
/// `has256` and `has512` say so.
std::int32_t renderBy2(const Run& run);
std::int32_t renderBy4(const Run& run);
std::int32_t renderBy8(const Run& run);
#endif

}  // namespace marnoth::shift
