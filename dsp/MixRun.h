#pragma once

#include <cstdint>

#include "dsp/MixKernels.h"
#include "dsp/SourceWave.h"

namespace marnoth {

/// One kernel call on a wave's frames, safe at the wave's edges. Internal to the renders of this folder.
///
/// Reads `count` frames (0 or fewer: none) from frame `frame` of `wave` on. A frame before the wave's first
/// is read as the first, one behind the guard frame as the guard frame, however many there are, and a ramp
/// runs on through them. `args` holds the destination and the gains; source and count are filled in here.
/// `destChannels` is the stride of a destination frame in floats.
void mixRun(MixKernel kernel, const SourceWave& wave, std::int64_t frame, std::int64_t count,
            std::int32_t destChannels, MixArgs args);

}  // namespace marnoth
