#pragma once

#include <cstdint>

#include "platform/com/RefPtr.h"
#include "sample/AcidWave.h"
#include "sample/WaveMem.h"

namespace marnoth {

/// Channels of a file that is taken; only the first two are ever heard.
inline constexpr int kMaxFileChannels = 256;

/// How much audio a file may claim beyond what it holds: a recording that was cut short is played with
/// silence at its end, a few bytes that claim gigabytes are refused before anything is allocated for them.
inline constexpr std::int64_t kClaimToFile = 16;
inline constexpr std::int64_t kFreeClaimBytes = 1 << 20;

/// Reads the audio of an opened file as float, brought to `rate`, into a new wave, and lets `wave` go for it.
/// The wave's peak table is that of the file. Of a `data` chunk that the file cuts short the missing frames
/// are silent. Throws `std::bad_alloc` from the buffers that the audio passes through.
///
/// The fault leaves `wave` alone: a depth other than 16, 24 or 32 bits, 32 bits that aren't float, no
/// channel or more than `kMaxFileChannels`, a block size that isn't that of the channels and the depth, no
/// rate, no frame, or a claim as above. `noMemory` from the peak table; without memory for the samples there
/// is no fault and the wave has none.
LoadFault readSamples(CAcidWave& file, std::uint32_t rate, RefPtr<CWaveMem>& wave);

}  // namespace marnoth
