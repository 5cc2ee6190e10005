#pragma once

#include <cstdint>
#include <span>

#include "sample/AcidWave.h"

namespace marnoth {

/// How many of these samples are no numbers: NaN or infinite.
std::int64_t countNotFinite(std::span<const float> samples);

/// The same of the audio of an opened file; 0 of one that doesn't hold 32-bit floats.
std::int64_t countNotFinite(CAcidWave& file);

}  // namespace marnoth
