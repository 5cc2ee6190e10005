#include "sample/NotFinite.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace marnoth {

std::int64_t countNotFinite(std::span<const float> samples) {
    return std::count_if(samples.begin(), samples.end(), [](float sample) { return !std::isfinite(sample); });
}

std::int64_t countNotFinite(CAcidWave& file) {
    constexpr std::size_t kSamplesAtOnce = 0x4000;
    const bool isFloat = file.sampleTag == WAVE_FORMAT_IEEE_FLOAT && file.format.wBitsPerSample == 32;
    if (!isFloat || FAILED(file.SeekFrame(0))) return 0;
    std::vector<float> block(kSamplesAtOnce);
    std::int64_t found = 0;
    for (std::int64_t left = file.dataBytes / std::int64_t{sizeof(float)}; left > 0;) {
        const auto count = static_cast<std::size_t>(std::min<std::int64_t>(left, kSamplesAtOnce));
        const auto bytes = static_cast<std::uint32_t>(count * sizeof(float));
        if (file.ReadData(block.data(), bytes) != bytes) break;
        found += countNotFinite(std::span(block).first(count));
        left -= static_cast<std::int64_t>(count);
    }
    return found;
}

}  // namespace marnoth
