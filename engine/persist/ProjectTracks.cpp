#include "engine/persist/ProjectTracks.h"

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#include "engine/persist/TailPlan.h"
#include "platform/system/Overflow.h"
#include "platform/system/Parallel.h"
#include "project/ProjectReader.h"
#include "project/ProjectScale.h"

namespace marnoth {
namespace {

/// Tails take twice the frames of their grains. Beyond this many times the audio only a file that was made to
/// exhaust the memory goes: grains that share place and length share their tail.
constexpr std::int64_t kMostTailsPerAudio = 16;
/// Frames of audio that are worth starting threads for.
constexpr std::int64_t kAudioWorthThreads = 1 << 16;

/// Offset and count within the peak table and the one spare entry behind it.
void holdToPeakTable(CGrooveEvent& grain) {
    constexpr std::uint32_t kEntries = CWaveMem::kPeakPoints + 1;
    grain.peakOffset = std::min(grain.peakOffset, kEntries);
    grain.peakCount = std::min(grain.peakCount, kEntries - grain.peakOffset);
}

/// A grain of `wave` after scaled settings that lie within it.
CGrooveEvent makeGrain(const GrainSettings& settings, const RefPtr<CWaveMem>& wave) {
    CGrooveEvent grain;
    static_cast<GrainSettings&>(grain) = settings.sanitized();
    grain.tailLengthSamples = 0;
    grain.AttachSample(wave, settings.sampleOffset);
    holdToPeakTable(grain);
    return grain;
}

/// What a file says of its own grains is taken as far as the file reaches.
GrainSettings heldTo(GrainSettings record, std::int64_t frames) {
    record.sampleOffset = std::clamp<std::int64_t>(record.sampleOffset, 0, frames);
    record.lengthSamples = std::clamp<std::int64_t>(record.lengthSamples, 0, frames - record.sampleOffset);
    return record;
}

/// The place in the wave of a pad's grain. A place and an end are rounded separately when the rate changes:
/// a frame too many is cut then.
bool fitInto(GrainSettings& record, std::int64_t frames, bool rateChanged) {
    record.lengthSamples = std::max<std::int64_t>(record.lengthSamples, 0);
    const std::int64_t excess = rateChanged ? 1 : 0;
    if (record.sampleOffset < 0 || frames < 1 || record.sampleOffset >= frames + excess) return false;
    record.sampleOffset = std::min(record.sampleOffset, frames - 1);
    const std::int64_t room = frames - record.sampleOffset;
    if (record.lengthSamples > room + excess) return false;
    record.lengthSamples = std::min(record.lengthSamples, room);
    return true;
}

/// The grains of one track, each in its place from the beginning, since tails are built for many at a time.
using TrackGrains = std::vector<CGrooveEvent>;

GrainList listOf(TrackGrains& grains) {
    std::vector<RefPtr<const GrainPart>> parts;
    parts.reserve(grains.size());
    for (CGrooveEvent& grain : grains) parts.push_back(GrainList::part(std::move(grain)));
    return GrainList(std::move(parts));
}

class TrackBuilding {
public:
    TrackBuilding(Project& project, const EngineRates& rates, ProjectTracks& tracks)
        : project_(project), rates_(rates), tracks_(tracks) {}

    LoadFault build() {
        if (FAILED(prepareWaves())) return {.kind = FaultKind::noMemory};
        for (ProjectFile& file : project_.files) addFile(file);
        if (const LoadFault fault = grainBelowZero(project_)) return fault;
        for (std::size_t pad = 0; pad < project_.pads.size(); ++pad) addPad(pad);
        const std::int64_t mostTails = times(audioFrames_, kMostTailsPerAudio);
        if (tails_.frames() > mostTails)
            return badValue(FaultQuantity::tailFrames, tails_.frames(), 0, mostTails);
        if (FAILED(tails_.build())) return {.kind = FaultKind::noMemory};
        putGrains();
        return {};
    }

private:
    std::int64_t countFrames() const;
    HRESULT prepareWaves();
    HRESULT prepareWave(CWaveMem& wave) const;
    void addFile(ProjectFile& file);
    CGrooveEvent makeFileGrain(const RefPtr<CWaveMem>& wave, const GrainSettings& saved,
                               std::int32_t index) const;
    void addPad(std::size_t pad);
    /// Once they have their tails.
    void putGrains();
    double ratioOfPad(const TrackGrains& grains) const;
    std::optional<CGrooveEvent> makePadGrain(const GrainSettings& saved) const;

    Project& project_;
    const EngineRates& rates_;
    ProjectTracks& tracks_;
    std::array<TrackGrains, kBinFiles> fileGrains_;
    std::array<TrackGrains, kPads> padGrains_;
    TailPlan tails_;
    std::int64_t audioFrames_ = 0;
};

HRESULT TrackBuilding::prepareWave(CWaveMem& wave) const {
    if (const HRESULT result = wave.Resample(rates_.format); FAILED(result)) return result;
    return wave.BuildPeaks(0, CWaveMem::kPeakPoints);
}

std::int64_t TrackBuilding::countFrames() const {
    std::int64_t frames = 0;
    for (const ProjectFile& file : project_.files) frames = plus(frames, file.wave->frames);
    return frames;
}

HRESULT TrackBuilding::prepareWaves() {
    std::array<HRESULT, kBinFiles> results{};
    const auto prepareAt = [&](std::size_t i) { results.at(i) = prepareWave(*project_.files[i].wave); };
    if (countFrames() >= kAudioWorthThreads) {
        forEachInParallel(project_.files.size(), prepareAt);
    } else {
        for (std::size_t i = 0; i < project_.files.size(); ++i) prepareAt(i);
    }
    for (const HRESULT result : results) {
        if (FAILED(result)) return result;
    }
    audioFrames_ = countFrames();
    return S_OK;
}

void TrackBuilding::addFile(ProjectFile& file) {
    BinFile built;
    built.sample = std::move(file.wave);
    static_cast<TrackSettings&>(built.track) =
        scaledTrack(file.settings, built.sample->rateRatio).sanitized();
    built.track.RecomputeTempo(rates_.sampleRate);
    built.names =
        std::make_shared<const BinFile::Names>(BinFile::Names{std::move(file.name), std::move(file.path)});
    TrackGrains& grains = fileGrains_[static_cast<std::size_t>(tracks_.files.size())];
    grains.reserve(file.grains.size());
    for (const GrainSettings& saved : file.grains) {
        grains.push_back(makeFileGrain(built.sample, saved, static_cast<std::int32_t>(grains.size())));
        tails_.add(grains.back());
    }
    tracks_.files.add(std::move(built));
}

CGrooveEvent TrackBuilding::makeFileGrain(const RefPtr<CWaveMem>& wave, const GrainSettings& saved,
                                          std::int32_t index) const {
    CGrooveEvent grain = makeGrain(heldTo(scaledGrain(saved, wave->rateRatio), wave->frames), wave);
    // A grain from nowhere would come back from a pad as one that no project may hold.
    if (grain.binFile < 0) grain.binFile = tracks_.files.size();
    if (grain.binGrain < 0) grain.binGrain = index;
    return grain;
}

void TrackBuilding::putGrains() {
    for (std::int32_t file = 0; file < tracks_.files.size(); ++file)
        tracks_.files[file].track.SetGrains(listOf(fileGrains_[static_cast<std::size_t>(file)]));
    for (std::size_t pad = 0; pad < tracks_.pads.size(); ++pad)
        tracks_.pads[pad].SetGrains(listOf(padGrains_[pad]));
}

void TrackBuilding::addPad(std::size_t pad) {
    const ProjectPad& saved = project_.pads[pad];
    TrackGrains& grains = padGrains_[pad];
    grains.reserve(saved.grains.size());
    for (const GrainSettings& settings : saved.grains) {
        auto grain = makePadGrain(settings);
        if (!grain) continue;
        grains.push_back(std::move(*grain));
        tails_.add(grains.back());
    }
    CGrooveTrack& track = tracks_.pads[pad];
    static_cast<TrackSettings&>(track) = scaledTrack(saved.settings, ratioOfPad(grains)).sanitized();
    track.RecomputeTempo(rates_.sampleRate);
}

double TrackBuilding::ratioOfPad(const TrackGrains& grains) const {
    if (!grains.empty()) return grains.front().sample->rateRatio;
    return tracks_.files.size() == 0 ? 1.0 : tracks_.files[0].sample->rateRatio;
}

std::optional<CGrooveEvent> TrackBuilding::makePadGrain(const GrainSettings& saved) const {
    if (!tracks_.files.has(saved.binFile)) return std::nullopt;
    const TrackGrains& grains = fileGrains_[static_cast<std::size_t>(saved.binFile)];
    if (saved.binGrain >= static_cast<std::int32_t>(grains.size())) return std::nullopt;
    const RefPtr<CWaveMem>& wave = grains[static_cast<std::size_t>(saved.binGrain)].sample;
    GrainSettings settings = scaledGrain(saved, wave->rateRatio);
    if (!fitInto(settings, wave->frames, wave->rateRatio != 1.0)) return std::nullopt;
    return makeGrain(settings, wave);
}

}  // namespace

LoadFault buildTracks(Project& project, const EngineRates& rates, ProjectTracks& tracks) {
    try {
        return TrackBuilding(project, rates, tracks).build();
    } catch (const std::bad_alloc&) {
        return {.kind = FaultKind::noMemory};
    }
}

}  // namespace marnoth
