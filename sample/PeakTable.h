#pragma once

#include <cstdint>

#include "dsp/SourceWave.h"

namespace marnoth {

/// Fills a peak table of `points` entries of 2 * channels values, which are 0 before: the minimum and maximum
/// of the first channel, then of the second when there are two. Values beyond those stay 0, and so do entries
/// that no frame reaches.
void fillPeaks(const SourceWave& wave, std::int32_t points, float* table);

}  // namespace marnoth
