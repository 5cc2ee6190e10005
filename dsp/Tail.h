#pragma once

#include <cstdint>

#include "dsp/SourceWave.h"

namespace marnoth {

/// Gain per frame of a tail of a grain of `grainFrames` frames: each pass over the whole grain falls to 0.15.
double tailDecayPerFrame(std::int64_t grainFrames);

/// Adds the tail of a grain to `dest`: the grain repeated in passes with crossfades, each pass quieter than
/// the last, over 2 * `grainFrames` frames, with a fade-in of 2 ms and a fade-out of 100 ms. `dest` is
/// interleaved with the source's channel count, 2 * `grainFrames` long and cleared. No read passes the
/// source's last frame. Any thread; offline work, done once per grain.
void renderTail(const SourceWave& source, std::int64_t firstFrame, std::int64_t grainFrames,
                std::int32_t sampleRate, float* dest);

}  // namespace marnoth
