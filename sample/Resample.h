#pragma once

#include <cstdint>

#include "dsp/SourceWave.h"

namespace marnoth {

/// Brings a wave to another rate by a quadratic through four points: frame i of `dest` lies at i / `ratio` of
/// `source`. Around the source is silence; its guard frame isn't read. `frames` frames of `dest` are written,
/// all channels of them. Both have less than 2^31 frames.
void resample(const SourceWave& source, float* dest, std::int64_t frames, double ratio);

}  // namespace marnoth
