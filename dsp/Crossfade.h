#pragma once

#include <cstdint>

#include "dsp/CrossfadeGains.h"
#include "dsp/SourceWave.h"

/// Both sides of a crossfade. Internal to the renders of this folder.
namespace marnoth {

/// Frames of a wave of which some fade out while others fade in.
struct CrossfadeRun {
    const SourceWave& wave;
    std::int64_t from = 0;   ///< the frame with which those that fade out begin
    std::int64_t to = 0;     ///< the same of those that fade in
    std::int64_t count = 0;  ///< frames of each; 0 or fewer: none
    float* dest = nullptr;   ///< what they are added to, interleaved
    std::int32_t destChannels = 0;
};

/// Adds the run under gains that begin so: the bits of two ramped calls of `mixRun`, out and then in, edges
/// of the wave included. `known` remembers the gains for the next crossfade like it; may be null.
void mixCrossfade(const CrossfadeRun& run, const FadeState& gains, CrossfadeGains* known = nullptr);

#if defined(__x86_64__)
/// Works out the `frames` frames of `ramp` from where they `begin`, and meanwhile adds as many frames at
/// `out` and `in`, of one or two channels, to the stereo frames at `dest`. Both ramps at once take hardly
/// longer than one, since each gain waits for the one before it. For processors where `has256` says so.
void crossfadeAndRecord(CrossfadeGains::Ramp& ramp, float* dest, const float* out, const float* in,
                        std::int32_t channels);
#endif

}  // namespace marnoth
