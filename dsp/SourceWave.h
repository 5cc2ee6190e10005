#pragma once

#include <cstdint>

namespace marnoth {

/// A view of a wave in memory: interleaved `float` frames, with one guard frame behind the last, which
/// repeats it so that linear interpolation may read one frame past the end. Doesn't own the samples.
struct SourceWave {
    const float* samples = nullptr;
    std::int64_t frames = 0;    ///< guard frame not counted; readable frames are 0 to `frames` inclusive
    std::int32_t channels = 0;  ///< stride of a frame; only 2 is stereo, everything else is treated as mono
};

}  // namespace marnoth
