#include <algorithm>
#include <cmath>
#include <limits>

#include "engine/loopbin/BinFile.h"
#include "sample/AcidWave.h"
#include "sample/ReadWave.h"
#include "sample/TailStore.h"
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
CGrooveEvent makeLoopGrain(const RefPtr<CWaveMem>& wave, const Cut& cut, std::uint32_t beats,
                           Samples tailStorage) {
    const auto total = static_cast<double>(wave->frames);
    const auto toTicks = [&](std::int64_t frame) {
        return roundHalfUp(static_cast<double>(frame) / total * beats * kTicks16PerBeat);
    };
    const auto toPeaks = [&](std::int64_t frame) {
        const double points = static_cast<double>(wave->peakPoints) * static_cast<double>(frame);
        return static_cast<std::uint32_t>(roundHalfUp(points / total));
    };
    CGrooveEvent grain;
    grain.tempoLocked = 1;
    grain.startTicks = toTicks(cut.start);
    grain.startSamples = cut.start;
    grain.lengthTicks = toTicks(cut.length);
    grain.lengthSamples = cut.length;
    grain.AttachSample(wave, cut.start);
    grain.BuildTail(std::move(tailStorage));
    grain.peakOffset = toPeaks(cut.start);
    grain.peakCount = toPeaks(cut.length);
    return grain;
}

CGrooveEvent makeWholeGrain(const RefPtr<CWaveMem>& wave) {
    CGrooveEvent grain;
    grain.lengthSamples = wave->frames;
    grain.AttachSample(wave, 0);
    grain.BuildTail();
    grain.peakCount = CWaveMem::kPeakPoints;
    const double seconds = static_cast<double>(wave->frames) / grain.format.nSamplesPerSec;
    grain.lengthTicks = nearestBeats(seconds) * kTicks16PerBeat;
    return grain;
}

using Grains = std::vector<RefPtr<const GrainPart>>;

/// The file's segments as far as they lie in the wave.
std::vector<Cut> cutsOf(const CAcidWave& file, const CWaveMem& wave) {
    std::vector<Cut> cuts;
    for (std::int32_t i = 0; i < file.GetSegmentCount(); ++i) {
        const Cut cut(file.GetSegment(i), wave.rateRatio);
        if (!cut.fitsIn(wave.frames)) break;
        cuts.push_back(cut);
    }
    return cuts;
}

TailStore tailsFor(const std::vector<Cut>& cuts, const CWaveMem& wave) {
    std::vector<std::int64_t> values;
    values.reserve(cuts.size());
    for (const Cut& cut : cuts) values.push_back(CWaveMem::tailValues(wave.format.nChannels, cut.length));
    return TailStore(std::move(values));
}

Grains cutSegments(const CAcidWave& wave, const RefPtr<CWaveMem>& sample, std::int32_t binIndex) {
    const std::vector<Cut> cuts = cutsOf(wave, *sample);
    TailStore tails = tailsFor(cuts, *sample);
    Grains grains;
    for (const Cut& cut : cuts) {
        CGrooveEvent grain = makeLoopGrain(sample, cut, wave.beats, tails.next());
        grain.binFile = binIndex;
        grain.binGrain = static_cast<std::int32_t>(grains.size());
        grains.push_back(GrainList::part(std::move(grain)));
    }
    return grains;
}

Grains cutWhole(const RefPtr<CWaveMem>& sample, std::int32_t binIndex) {
    CGrooveEvent grain = makeWholeGrain(sample);
    grain.binFile = binIndex;
    grain.binGrain = 0;
    return {GrainList::part(std::move(grain))};
}

void setUpAsLoop(CGrooveTrack& track, const CAcidWave& wave) {
    track.looping = track.synced = 1;
    track.followKey = wave.rootNoteSet;
    // The reader has brought the note to this scale already; the shift by 3 counts twice, for every file.
    track.rootNote = (wave.rootNote + 3) % 12;
}

void setUpAsShot(CGrooveTrack& track) {
    track.looping = track.synced = track.followKey = 0;
}

}  // namespace

const std::shared_ptr<const BinFile::Names>& BinFile::unnamed() {
    static const auto none = std::make_shared<const Names>();
    return none;
}

LoadFault BinFile::ReadSamples(CAcidWave& wave, const WAVEFORMATEX& format, std::int32_t sampleRate) {
    if (const LoadFault fault = readSamples(wave, format.nSamplesPerSec, sample)) return fault;
    track.lengthSamples = wave.GetLength(kSamples);
    track.RecomputeTempo(sampleRate);
    return {};
}

LoadFault BinFile::LoadFromWave(CAcidWave& wave, const std::wstring& name, const std::wstring& path,
                                std::int32_t binIndex, const WAVEFORMATEX& format, std::int32_t sampleRate) {
    track.ClearGrains();
    const LoadFault fault = readAndCut(wave, binIndex, format, sampleRate);
    if (fault) {
        names = unnamed();
        track.ClearGrains();
        sample.reset();
        return fault;
    }
    names = std::make_shared<const Names>(Names{name, path});
    return fault;
}

LoadFault BinFile::readAndCut(CAcidWave& wave, std::int32_t binIndex, const WAVEFORMATEX& format,
                              std::int32_t sampleRate) {
    if (const LoadFault fault = brokenLimit(wave)) return fault;
    if (!hasGrains(wave, format.nSamplesPerSec)) return {.kind = FaultKind::noGrains};
    if (const LoadFault fault = ReadSamples(wave, format, sampleRate)) return fault;
    if (!sample->samples) return {.kind = FaultKind::noMemory};
    track.SetGrains(
        GrainList(isLoop(wave) ? cutSegments(wave, sample, binIndex) : cutWhole(sample, binIndex)));
    if (isLoop(wave)) {
        setUpAsLoop(track, wave);
    } else {
        setUpAsShot(track);
    }
    track.SetTail(0);
    const CGrooveEvent& last = track.GetAt(track.GetSize() - 1);
    track.lengthTicks = last.GetEnd(kTicks16, 0);
    track.lengthSamples = last.GetEnd(kSamples, 0);
    track.RecomputeTempo(sampleRate);
    return {};
}

}  // namespace marnoth
