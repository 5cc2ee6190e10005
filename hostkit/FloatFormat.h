#pragma once

#include <cstdint>

#include "platform/com/Com.h"

namespace marnoth {

/// The format of 32-bit float audio: `rate` frames per second, interleaved channels.
WAVEFORMATEX floatFormat(std::uint32_t rate, std::uint32_t channels);

/// Whether two formats describe the same audio; what may follow the records isn't looked at.
bool sameAudio(const WAVEFORMATEX& a, const WAVEFORMATEX& b);

}  // namespace marnoth
