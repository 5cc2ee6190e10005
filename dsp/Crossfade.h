#pragma once

#include <cstdint>

#include "dsp/MixKernels.h"
#include "dsp/SourceWave.h"

/// Both sides of a crossfade. Internal to the renders of this folder.
namespace marnoth {

/// Adds `count` frames from frame `from` of `wave` on under the ramp of `out`, and as many from frame `to` on
/// under that of `in`, to the destination that both name: the bits of two ramped calls of `mixRun`, one
/// behind the other, edges of the wave included.
void mixCrossfade(const SourceWave& wave, std::int64_t from, std::int64_t to, std::int64_t count,
                  std::int32_t destChannels, const MixArgs& out, const MixArgs& in);

#if defined(__x86_64__)
/// The same for sources of one or two channels into two, all inside the wave: `out` and `in` name them, one
/// destination and one count. Each gain of a ramp waits for the one before it, so that both ramps at once
/// take hardly longer than one. For processors where `has256` says so.
void crossfadeTogether(const MixArgs& out, const MixArgs& in, std::int32_t sourceChannels);
#endif

}  // namespace marnoth
