#include "engine/persist/ProjectTracks.h"

#include <algorithm>
#include <new>
#include <utility>

#include "engine/persist/TailPlan.h"
#include "platform/system/Parallel.h"
#include "project/ProjectReader.h"
#include "project/ProjectScale.h"

namespace marnoth {
namespace {

/// Tails take twice the frames of their grains. Beyond this many times the audio only a file that was made to
/// exhaust the memory goes: grains that share place and length share their tail.
constexpr std::int64_t kMostTailsPerAudio = 16;
/// Frames of audio that are worth starting threads for.
constexpr std::int64_t kWorthThreads = 1 << 16;

/// Offset and count within the peak table and the one spare entry behind it.
void holdToPeakTable(CGrooveEvent& grain) {
    constexpr std::uint32_t kEntries = CWaveMem::kPeakPoints + 1;
    grain.peakOffset = std::min(grain.peakOffset, kEntries);
    grain.peakCount = std::min(grain.peakCount, kEntries - grain.peakOffset);
}

/// A grain of `wave` after a scaled record that lies within it.
std::unique_ptr<CGrooveEvent> makeGrain(const GrainRecord& record, const RefPtr<CWaveMem>& wave) {
    auto grain = std::make_unique<CGrooveEvent>();
    grain->FromRecord(record);
    grain->tailLengthSamples = 0;
    grain->AttachSample(wave, record.sampleOffset);
    holdToPeakTable(*grain);
    return grain;
}

/// What a file says of its own grains is taken as far as the file reaches.
GrainRecord heldTo(GrainRecord record, std::int64_t frames) {
    record.sampleOffset = std::clamp<std::int64_t>(record.sampleOffset, 0, frames);
    record.lengthSamples = std::clamp<std::int64_t>(record.lengthSamples, 0, frames - record.sampleOffset);
    return record;
}

/// The place in the wave of a pad's grain. Places and ends are rounded each for itself when the rate changes:
/// a frame too many is cut then.
bool fitInto(GrainRecord& record, std::int64_t frames, bool rateChanged) {
    record.lengthSamples = std::max<std::int64_t>(record.lengthSamples, 0);
    const std::int64_t excess = rateChanged ? 1 : 0;
    if (record.sampleOffset < 0 || frames < 1 || record.sampleOffset >= frames + excess) return false;
    record.sampleOffset = std::min(record.sampleOffset, frames - 1);
    const std::int64_t room = frames - record.sampleOffset;
    if (record.lengthSamples > room + excess) return false;
    record.lengthSamples = std::min(record.lengthSamples, room);
    return true;
}

class TrackBuilding {
public:
    TrackBuilding(Project& project, const WAVEFORMATEX& format, CPziSynthContext* context,
                  ProjectTracks& tracks)
        : project_(project), format_(format), context_(context), tracks_(tracks) {}

    LoadFault build() {
        if (FAILED(prepareWaves())) return {.kind = FaultKind::noMemory};
        for (ProjectFile& file : project_.files) addFile(file);
        if (const LoadFault fault = grainBelowZero(project_)) return fault;
        for (std::size_t pad = 0; pad < project_.pads.size(); ++pad) addPad(pad);
        const std::int64_t mostTails = times(audioFrames_, kMostTailsPerAudio);
        if (tails_.frames() > mostTails)
            return badValue(FaultQuantity::tailFrames, tails_.frames(), 0, mostTails);
        if (FAILED(tails_.build())) return {.kind = FaultKind::noMemory};
        return {};
    }

private:
    std::int64_t countFrames() const;
    HRESULT prepareWaves();
    HRESULT prepareWave(CWaveMem& wave) const;
    void addFile(ProjectFile& file);
    void addFileGrain(CGrooveTrack& track, const GrainRecord& saved);
    void addPad(std::size_t pad);
    const CGrooveTrack* fileOf(const GrainRecord& record) const;
    double ratioOfPad(const CGrooveTrack& pad) const;
    std::unique_ptr<CGrooveEvent> makePadGrain(const GrainRecord& saved);

    Project& project_;
    const WAVEFORMATEX& format_;
    CPziSynthContext* context_;
    ProjectTracks& tracks_;
    TailPlan tails_;
    std::int64_t audioFrames_ = 0;
};

HRESULT TrackBuilding::prepareWave(CWaveMem& wave) const {
    if (const HRESULT result = wave.Resample(format_); FAILED(result)) return result;
    return wave.BuildPeaks(0, CWaveMem::kPeakPoints);
}

std::int64_t TrackBuilding::countFrames() const {
    std::int64_t frames = 0;
    for (const ProjectFile& file : project_.files) frames = plus(frames, file.wave->frames);
    return frames;
}

HRESULT TrackBuilding::prepareWaves() {
    std::array<HRESULT, 16> results{};
    const auto prepareAt = [&](std::size_t i) { results.at(i) = prepareWave(*project_.files[i].wave); };
    if (countFrames() >= kWorthThreads) {
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
    auto track = std::make_unique<CGrooveTrack>(context_);
    track->sample = std::move(file.wave);
    track->FromRecord(scaledTrack(file.settings, track->sample->rateRatio));
    track->name = std::move(file.name);
    track->path = std::move(file.path);
    for (const GrainRecord& saved : file.grains) addFileGrain(*track, saved);
    tracks_.files.push_back(std::move(track));
}

void TrackBuilding::addFileGrain(CGrooveTrack& track, const GrainRecord& saved) {
    const CWaveMem& wave = *track.sample;
    auto grain = makeGrain(heldTo(scaledGrain(saved, wave.rateRatio), wave.frames), track.sample);
    // A grain from nowhere would come back from a pad as one that no project may hold.
    if (grain->binFile < 0) grain->binFile = static_cast<std::int32_t>(tracks_.files.size());
    if (grain->binGrain < 0) grain->binGrain = track.GetSize();
    tails_.add(*grain);
    track.append(std::move(grain));
}

void TrackBuilding::addPad(std::size_t pad) {
    const ProjectPad& saved = project_.pads[pad];
    auto track = std::make_unique<CGrooveTrack>(context_);
    for (const GrainRecord& record : saved.grains) {
        if (auto grain = makePadGrain(record)) track->append(std::move(grain));
    }
    track->FromRecord(scaledTrack(saved.settings, ratioOfPad(*track)));
    tracks_.pads[pad] = std::move(track);
}

const CGrooveTrack* TrackBuilding::fileOf(const GrainRecord& record) const {
    const auto file = static_cast<std::size_t>(record.binFile);
    return file < tracks_.files.size() ? tracks_.files[file].get() : nullptr;
}

double TrackBuilding::ratioOfPad(const CGrooveTrack& pad) const {
    if (pad.GetSize() > 0) return pad.GetAt(0).sample->rateRatio;
    return tracks_.files.empty() ? 1.0 : tracks_.files.front()->sample->rateRatio;
}

std::unique_ptr<CGrooveEvent> TrackBuilding::makePadGrain(const GrainRecord& saved) {
    const CGrooveTrack* const file = fileOf(saved);
    if (!file || saved.binGrain >= file->GetSize()) return nullptr;
    const RefPtr<CWaveMem>& wave = file->GetAt(saved.binGrain).sample;
    GrainRecord record = scaledGrain(saved, wave->rateRatio);
    if (!fitInto(record, wave->frames, wave->rateRatio != 1.0)) return nullptr;
    auto grain = makeGrain(record, wave);
    tails_.add(*grain);
    return grain;
}

}  // namespace

LoadFault buildTracks(Project& project, const WAVEFORMATEX& format, CPziSynthContext* context,
                      ProjectTracks& tracks) {
    try {
        return TrackBuilding(project, format, context, tracks).build();
    } catch (const std::bad_alloc&) {
        return {.kind = FaultKind::noMemory};
    }
}

}  // namespace marnoth
