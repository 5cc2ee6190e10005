#include "sample/ReadWave.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "sample/SampleConvert.h"

namespace marnoth {
namespace {

constexpr std::uint32_t kLengthInFrames = 3;
/// Whole values of every depth, and enough to pass by the buffer of the file.
constexpr std::int64_t kBytesAtOnce = 0x18000;

bool canConvert(const WAVEFORMATEX& format) {
    switch (format.wBitsPerSample) {
        case 16:
        case 24:
            return true;
        case 32:
            return format.wFormatTag == WAVE_FORMAT_IEEE_FLOAT;
        default:
            return false;
    }
}

bool isSound(const WAVEFORMATEX& format) {
    return format.nChannels >= 1 && format.nChannels <= kMaxFileChannels && format.nSamplesPerSec != 0 &&
           format.nBlockAlign == format.nChannels * (format.wBitsPerSample / 8);
}

bool claimIsPlausible(const CAcidWave& file) {
    return file.dataBytes <= std::max(file.fileBytes * kClaimToFile, kFreeClaimBytes);
}

void convert(float* dest, const std::byte* source, std::int64_t count, int bits) {
    switch (bits) {
        case 16:
            return convert16(dest, source, count, kScale16);
        case 24:
            return convert24(dest, source, count, kScale24);
        default:
            std::memcpy(dest, source, static_cast<std::size_t>(count) * sizeof(float));
    }
}

/// Fills `count` values from the beginning of the audio; what the file doesn't supply is silence.
void readValues(CAcidWave& file, float* dest, std::int64_t count) {
    const std::int64_t width = file.format.wBitsPerSample / 8;
    std::int64_t left = count * width;
    std::vector<std::byte> block(static_cast<std::size_t>(std::min(left, kBytesAtOnce)));
    bool more = SUCCEEDED(file.SeekFrame(0));
    while (left > 0 && more) {
        const std::int64_t bytes = std::min(left, kBytesAtOnce);
        std::fill(block.begin(), block.end(), std::byte{});
        more = file.ReadData(block.data(), static_cast<std::uint32_t>(bytes)) == bytes;
        convert(dest, block.data(), bytes / width, file.format.wBitsPerSample);
        dest += bytes / width;
        left -= bytes;
    }
    std::fill(dest, dest + left / width, 0.0f);
}

void becomeFloat(WAVEFORMATEX& format) {
    format.wFormatTag = WAVE_FORMAT_IEEE_FLOAT;
    format.wBitsPerSample = 32;
    format.nBlockAlign = static_cast<WORD>(format.nChannels * 4);
    format.nAvgBytesPerSec = format.nBlockAlign * format.nSamplesPerSec;
}

}  // namespace

HRESULT readSamples(CAcidWave& file, RefPtr<CWaveMem>& wave) {
    const std::int64_t frames = file.GetLength(kLengthInFrames);
    if (!canConvert(file.format) || !isSound(file.format) || frames == 0 || !claimIsPlausible(file))
        return E_FAIL;
    wave = CWaveMem::make();
    if (FAILED(wave->Create(frames, file.format))) return S_OK;
    readValues(file, wave->samples.get(), frames * file.format.nChannels);
    wave->writeGuardFrame();
    becomeFloat(wave->format);
    return wave->BuildPeaks(0, CWaveMem::kPeakPoints);
}

}  // namespace marnoth
