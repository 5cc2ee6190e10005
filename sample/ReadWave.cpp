#include "sample/ReadWave.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>
#include <vector>

#include "sample/PeakTable.h"
#include "sample/Resample.h"
#include "sample/SampleConvert.h"

namespace marnoth {
namespace {

/// Near enough to stay at hand, and enough to pass by the buffer of the file.
constexpr std::int64_t kBytesAtOnce = 0x18000;

bool canConvert(const CAcidWave& file) {
    switch (file.format.wBitsPerSample) {
        case 16:
        case 24:
            return true;
        case 32:
            return file.sampleTag == WAVE_FORMAT_IEEE_FLOAT;
        default:
            return false;
    }
}

bool isCompressed(std::uint16_t tag) {
    return tag != WAVE_FORMAT_PCM && tag != WAVE_FORMAT_IEEE_FLOAT && tag != WAVE_FORMAT_EXTENSIBLE;
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
    // Blocks of what is compressed aren't frames, whatever number of bits it tells.
    const bool isCoded = isCompressed(file.sampleTag) && format.nBlockAlign != blockBytes;
    if (!canConvert(file) || isCoded) {
        return {.kind = FaultKind::formatNotTaken,
                .formatTag = file.sampleTag,
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

/// A wave, and its peak table, that the frames of its file come into block by block.
class WaveFill {
public:
    WaveFill(CWaveMem& wave, std::int64_t fileFrames, std::int64_t blockFrames)
        : wave_(wave),
          next_(wave.samples.get()),
          peaks_(fileFrames, wave.format.nChannels, wave.peakPoints, wave.peaks.get()) {
        if (wave.rateRatio != 1.0)
            rateChange_.emplace(next_, wave.frames, wave.rateRatio, wave.format.nChannels, blockFrames);
    }

    /// Where the next frames are put.
    float* block() { return rateChange_ ? rateChange_->block() : next_; }

    void take(std::int64_t frames) {
        peaks_.fold(block(), frames);
        if (rateChange_) {
            rateChange_->take(frames);
        } else {
            next_ += frames * wave_.format.nChannels;
        }
    }

    void finish() {
        if (rateChange_) rateChange_->finish();
        wave_.writeGuardFrame();
    }

private:
    CWaveMem& wave_;
    float* next_;
    PeakFolder peaks_;
    std::optional<RateChange> rateChange_;
};

/// Fills the wave from the beginning of the audio; what the file doesn't supply is silence.
void readFrames(CAcidWave& file, CWaveMem& wave) {
    const WAVEFORMATEX& format = file.format;
    const std::int64_t frames = file.GetLength(kLengthInFrames);
    const std::int64_t blockFrames = std::min(frames, kBytesAtOnce / format.nBlockAlign);
    WaveFill fill(wave, frames, blockFrames);
    std::vector<std::byte> bytes(static_cast<std::size_t>(blockFrames * format.nBlockAlign));
    bool more = SUCCEEDED(file.SeekFrame(0));
    for (std::int64_t left = frames, count = 0; left > 0; left -= count) {
        count = std::min(left, blockFrames);
        const auto wanted = static_cast<std::uint32_t>(count * format.nBlockAlign);
        std::fill(bytes.begin(), bytes.end(), std::byte{});
        more = more && file.ReadData(bytes.data(), wanted) == wanted;
        convert(fill.block(), bytes.data(), count * format.nChannels, format.wBitsPerSample);
        fill.take(count);
    }
    fill.finish();
}

void becomeFloat(WAVEFORMATEX& format) {
    format.wFormatTag = WAVE_FORMAT_IEEE_FLOAT;
    format.wBitsPerSample = 32;
    format.nBlockAlign = static_cast<WORD>(format.nChannels * 4);
    format.nAvgBytesPerSec = format.nBlockAlign * format.nSamplesPerSec;
}

}  // namespace

LoadFault readSamples(CAcidWave& file, std::uint32_t rate, RefPtr<CWaveMem>& wave) {
    if (const LoadFault fault = faultOf(file)) return fault;
    wave = CWaveMem::make();
    if (FAILED(wave->createForRate(file.GetLength(kLengthInFrames), file.format, rate))) return {};
    if (FAILED(wave->PreparePeaks(CWaveMem::kPeakPoints))) return {.kind = FaultKind::noMemory};
    readFrames(file, *wave);
    becomeFloat(wave->format);
    wave->format.nSamplesPerSec = rate;
    return {};
}

}  // namespace marnoth
