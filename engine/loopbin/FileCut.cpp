#include <algorithm>
#include <cmath>
#include <limits>

#include "engine/model/GrooveTrack.h"
#include "sample/AcidWave.h"
#include "sample/ReadWave.h"
#include "seam/Limits.h"

namespace marnoth {
namespace {

constexpr double kWholeFileTempo = 120.0;  ///< by which a file without loop data gets its beats

bool isLoop(const CAcidWave& wave) {
    return wave.hasAcid && wave.isLoop && wave.GetSegmentCount() > 0;
}

/// Measured at the file's own rate.
LoadFault brokenLimit(const CAcidWave& wave) {
    if (isLoop(wave) && wave.beats > kMostLoopBeats)
        return badValue(FaultQuantity::beats, wave.beats, 0, kMostLoopBeats);
    if (wave.format.nSamplesPerSec == 0)
        return badValue(FaultQuantity::rate, 0, 1, std::numeric_limits<DWORD>::max());
    const double seconds = static_cast<double>(wave.GetLength(kSamples)) / wave.format.nSamplesPerSec;
    if (isLoop(wave) && seconds > kLongestLoopSeconds)
        return badReal(FaultQuantity::loopSeconds, seconds, 0, kLongestLoopSeconds);
    if (!isLoop(wave) && seconds > kLongestShotSeconds)
        return badReal(FaultQuantity::shotSeconds, seconds, 0, kLongestShotSeconds);
    return {};
}

/// The power of two of beats that is nearest to the length at a fixed tempo, at least one beat.
std::int64_t nearestBeats(double seconds) {
    const double exponent = std::log2(kWholeFileTempo / 60.0 * seconds) + 0.5;
    if (!std::isfinite(exponent)) return 1;
    return std::max<std::int64_t>(1, static_cast<std::int64_t>(std::exp2(std::trunc(exponent))));
}

/// A file's segment, in frames of the resampled wave.
struct Cut {
    Cut(const WaveSegment& segment, double ratio)
        : start(roundHalfUp(segment.start * ratio)),
          length(roundHalfUp((static_cast<double>(segment.start) + segment.length) * ratio) - start) {}

    bool fitsIn(std::int64_t frames) const { return start + length <= frames; }

    std::int64_t start;
    std::int64_t length;
};

/// False for a loop whose first segment runs past its end at the new rate, so that nothing of it can be cut:
/// known before anything is read.
bool hasGrains(const CAcidWave& wave, std::uint32_t newRate) {
    if (!isLoop(wave)) return true;
    const double ratio = static_cast<double>(newRate) / wave.format.nSamplesPerSec;
    return Cut(wave.GetSegment(0), ratio).fitsIn(roundHalfUp(wave.frameCount * ratio));
}

/// A grain that plays a cut of `wave`, at the same place of a loop of `beats` beats.
std::unique_ptr<CGrooveEvent> makeLoopGrain(const RefPtr<CWaveMem>& wave, const Cut& cut,
                                            std::uint32_t beats) {
    const auto total = static_cast<double>(wave->frames);
    const auto toTicks = [&](std::int64_t frame) {
        return roundHalfUp(static_cast<double>(frame) / total * beats * kTicks16PerBeat);
    };
    const auto toPeaks = [&](std::int64_t frame) {
        const double points = static_cast<double>(wave->peakPoints) * static_cast<double>(frame);
        return static_cast<std::uint32_t>(roundHalfUp(points / total));
    };
    auto grain = std::make_unique<CGrooveEvent>();
    grain->tempoLocked = 1;
    grain->startTicks = toTicks(cut.start);
    grain->startSamples = cut.start;
    grain->lengthTicks = toTicks(cut.length);
    grain->lengthSamples = cut.length;
    grain->AttachSample(wave, cut.start);
    grain->BuildTail();
    grain->peakOffset = toPeaks(cut.start);
    grain->peakCount = toPeaks(cut.length);
    return grain;
}

std::unique_ptr<CGrooveEvent> makeWholeGrain(const RefPtr<CWaveMem>& wave) {
    auto grain = std::make_unique<CGrooveEvent>();
    grain->lengthSamples = wave->frames;
    grain->AttachSample(wave, 0);
    grain->BuildTail();
    grain->peakCount = CWaveMem::kPeakPoints;
    const double seconds = static_cast<double>(wave->frames) / grain->format.nSamplesPerSec;
    grain->lengthTicks = nearestBeats(seconds) * kTicks16PerBeat;
    return grain;
}

}  // namespace

LoadFault CGrooveTrack::ReadSamples(CAcidWave& wave) {
    if (const LoadFault fault = readSamples(wave, sample)) return fault;
    lengthSamples = wave.GetLength(kSamples);
    RecomputeTempo();
    return {};
}

LoadFault CGrooveTrack::LoadFromWave(CAcidWave& wave, const std::wstring& newName,
                                     const std::wstring& newPath, std::int32_t binIndex,
                                     const WAVEFORMATEX& format) {
    ClearGrains();
    const LoadFault fault = readAndCut(wave, binIndex, format);
    if (fault) {
        name.clear();
        path.clear();
        ClearGrains();
        sample.reset();
        return fault;
    }
    name = newName;
    path = newPath;
    return fault;
}

LoadFault CGrooveTrack::readAndCut(CAcidWave& wave, std::int32_t binIndex, const WAVEFORMATEX& newFormat) {
    if (const LoadFault fault = brokenLimit(wave)) return fault;
    if (!hasGrains(wave, newFormat.nSamplesPerSec)) return {.kind = FaultKind::noGrains};
    if (const LoadFault fault = ReadSamples(wave)) return fault;
    if (!sample->samples || FAILED(sample->Resample(newFormat))) return {.kind = FaultKind::noMemory};
    if (isLoop(wave)) {
        cutSegments(wave, binIndex);
    } else {
        cutWhole(binIndex);
    }
    SetTail(0);
    lengthTicks = grains_.back()->GetEnd(kTicks16, 0);
    lengthSamples = grains_.back()->GetEnd(kSamples, 0);
    RecomputeTempo();
    return {};
}

void CGrooveTrack::cutSegments(const CAcidWave& wave, std::int32_t binIndex) {
    for (std::int32_t i = 0; i < wave.GetSegmentCount(); ++i) {
        const Cut cut(wave.GetSegment(i), sample->rateRatio);
        if (!cut.fitsIn(sample->frames)) break;
        auto grain = makeLoopGrain(sample, cut, wave.beats);
        grain->binFile = binIndex;
        grain->binGrain = GetSize();
        append(std::move(grain));
    }
    looping = synced = 1;
    followKey = wave.rootNoteSet;
    // The reader has brought the note to this scale already; the shift by 3 counts twice, for every file.
    rootNote = (wave.rootNote + 3) % 12;
}

void CGrooveTrack::cutWhole(std::int32_t binIndex) {
    auto grain = makeWholeGrain(sample);
    grain->binFile = binIndex;
    grain->binGrain = 0;
    append(std::move(grain));
    looping = synced = followKey = 0;
}

}  // namespace marnoth
