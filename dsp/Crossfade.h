#pragma once

#include <cstdint>

#include "dsp/CrossfadeGains.h"
#include "dsp/MixKernels.h"
#include "dsp/SourceWave.h"

/// Both sides of a crossfade. Internal to the renders of this folder.
namespace marnoth {

/// Adds `count` frames from frame `from` of `wave` on under the ramp of `out`, and as many from frame `to` on
/// under that of `in`, to the destination that both name: the bits of two ramped calls of `mixRun`, one
/// behind the other, edges of the wave included. `known` remembers the gains for the next crossfade like it;
/// may be null.
void mixCrossfade(const SourceWave& wave, std::int64_t from, std::int64_t to, std::int64_t count,
                  std::int32_t destChannels, const MixArgs& out, const MixArgs& in,
                  CrossfadeGains* known = nullptr);

#if defined(__x86_64__)
/// Works out the `frames` frames of `ramp` from where they `begin`, and meanwhile adds as many frames at
/// `out` and `in`, of one or two channels, to the stereo frames at `dest`. Both ramps at once take hardly
/// longer than one, since each gain waits for the one before it. For processors where `has256` says so.
void crossfadeAndRecord(CrossfadeGains::Ramp& ramp, float* dest, const float* out, const float* in,
                        std::int32_t channels);
#endif

}  // namespace marnoth
