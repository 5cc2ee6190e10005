#include "hostkit/FloatFormat.h"

namespace marnoth {

WAVEFORMATEX floatFormat(std::uint32_t rate, std::uint32_t channels) {
    WAVEFORMATEX format{};
    format.wFormatTag = WAVE_FORMAT_IEEE_FLOAT;
    format.nChannels = static_cast<WORD>(channels);
    format.nSamplesPerSec = rate;
    format.nBlockAlign = static_cast<WORD>(channels * sizeof(float));
    format.nAvgBytesPerSec = rate * format.nBlockAlign;
    format.wBitsPerSample = 8 * sizeof(float);
    return format;
}

bool sameAudio(const WAVEFORMATEX& a, const WAVEFORMATEX& b) {
    return a.wFormatTag == b.wFormatTag && a.nChannels == b.nChannels &&
           a.nSamplesPerSec == b.nSamplesPerSec && a.nBlockAlign == b.nBlockAlign &&
           a.wBitsPerSample == b.wBitsPerSample;
}

}  // namespace marnoth
