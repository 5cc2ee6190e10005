#include "sample/ReadWave.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <vector>

#include "sample/PeakTable.h"
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

bool claimIsPlausible(const CAcidWave& file) {
    return file.dataBytes <= std::max(file.fileBytes * kClaimToFile, kFreeClaimBytes);
}

/// What keeps the audio from being read.
LoadFault faultOf(const CAcidWave& file) {
    constexpr FaultPlace kFormat{fourCC("fmt ")};
    constexpr std::int64_t kHighestNumber = std::numeric_limits<std::uint32_t>::max();
    const WAVEFORMATEX& format = file.format;
    const std::int64_t blockBytes = std::int64_t{format.nChannels} * (format.wBitsPerSample / 8);
    if (!canConvert(format)) {
        return {.kind = FaultKind::formatNotTaken,
                .formatTag = format.wFormatTag,
                .bits = format.wBitsPerSample,
                .place = kFormat};
    }
    if (format.nChannels < 1 || format.nChannels > kMaxFileChannels)
        return badValue(FaultQuantity::channels, format.nChannels, 1, kMaxFileChannels, kFormat);
    if (format.nSamplesPerSec == 0) return badValue(FaultQuantity::rate, 0, 1, kHighestNumber, kFormat);
    if (format.nBlockAlign != blockBytes)
        return badValue(FaultQuantity::blockBytes, format.nBlockAlign, blockBytes, blockBytes, kFormat);
    if (file.frameCount == 0) return badValue(FaultQuantity::frames, 0, 1, kHighestNumber, {fourCC("data")});
    if (!claimIsPlausible(file))
        return {.kind = FaultKind::cutShort, .place = {fourCC("data")}, .value = file.missingBytes()};
    return {};
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

/// Fills the wave and its peak table from the beginning of the audio; what the file doesn't supply is
/// silence.
void readValues(CAcidWave& file, CWaveMem& wave) {
    const std::int64_t width = file.format.wBitsPerSample / 8;
    const std::int64_t count = wave.frames * file.format.nChannels;
    float* const samples = wave.samples.get();
    PeakFolder peaks(wave.view(), wave.peakPoints, wave.peaks.get());
    std::vector<std::byte> block(static_cast<std::size_t>(std::min(count * width, kBytesAtOnce)));
    bool more = SUCCEEDED(file.SeekFrame(0));
    std::int64_t done = 0;
    while (done < count && more) {
        const std::int64_t bytes = std::min((count - done) * width, kBytesAtOnce);
        std::fill(block.begin(), block.end(), std::byte{});
        more = file.ReadData(block.data(), static_cast<std::uint32_t>(bytes)) == bytes;
        convert(samples + done, block.data(), bytes / width, file.format.wBitsPerSample);
        done += bytes / width;
        peaks.foldUpTo(done / file.format.nChannels);
    }
    std::fill(samples + done, samples + count, 0.0f);
    peaks.foldUpTo(wave.frames);
}

void becomeFloat(WAVEFORMATEX& format) {
    format.wFormatTag = WAVE_FORMAT_IEEE_FLOAT;
    format.wBitsPerSample = 32;
    format.nBlockAlign = static_cast<WORD>(format.nChannels * 4);
    format.nAvgBytesPerSec = format.nBlockAlign * format.nSamplesPerSec;
}

}  // namespace

LoadFault readSamples(CAcidWave& file, RefPtr<CWaveMem>& wave) {
    if (const LoadFault fault = faultOf(file)) return fault;
    const std::int64_t frames = file.GetLength(kLengthInFrames);
    wave = CWaveMem::make();
    if (FAILED(wave->Create(frames, file.format))) return {};
    if (FAILED(wave->PreparePeaks(CWaveMem::kPeakPoints))) return {.kind = FaultKind::noMemory};
    readValues(file, *wave);
    wave->writeGuardFrame();
    becomeFloat(wave->format);
    return {};
}

}  // namespace marnoth
