#pragma once

#include <cstdint>

#include "platform/com/Com.h"

namespace marnoth::test {

inline WAVEFORMATEX floatFormat(std::uint32_t rate, std::uint16_t channels) {
    WAVEFORMATEX format{};
    format.wFormatTag = WAVE_FORMAT_IEEE_FLOAT;
    format.nChannels = channels;
    format.nSamplesPerSec = rate;
    format.wBitsPerSample = 32;
    format.nBlockAlign = static_cast<WORD>(channels * 4);
    format.nAvgBytesPerSec = format.nBlockAlign * rate;
    return format;
}

}  // namespace marnoth::test
