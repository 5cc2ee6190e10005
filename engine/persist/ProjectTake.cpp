#include <exception>
#include <memory>
#include <optional>
#include <vector>

#include "engine/GrooveSampler.h"
#include "platform/text/Text.h"
#include "project/ProjectName.h"
#include "project/ProjectSave.h"

namespace marnoth {
namespace {

std::vector<GrainRecord> grainsOf(const CGrooveTrack& track) {
    std::vector<GrainRecord> grains;
    grains.reserve(static_cast<std::size_t>(track.GetSize()));
    for (std::int32_t i = 0; i < track.GetSize(); ++i) grains.push_back(track.GetAt(i).ToRecord());
    return grains;
}

using BinFiles = CPreAllocArray<std::unique_ptr<CGrooveTrack>>;

bool isCutFrom(const CGrooveEvent& grain, const BinFiles& files, std::int32_t file) {
    return file >= 0 && file < files.GetSize() && files[file]->sample == grain.sample;
}

/// The number that the file of a pad's grain has now; none when the file is gone. Undo brings back grains
/// with the numbers that files had before one was removed.
std::optional<std::int32_t> presentFile(const CGrooveEvent& grain, const BinFiles& files) {
    if (isCutFrom(grain, files, grain.binFile)) return grain.binFile;
    for (std::int32_t file = 0; file < files.GetSize(); ++file) {
        if (isCutFrom(grain, files, file)) return file;
    }
    return std::nullopt;
}

/// Without the grains whose file is gone: their audio goes into no project, and a load would give them that
/// of another file.
std::vector<GrainRecord> padGrainsOf(const CGrooveTrack& pad, const BinFiles& files) {
    std::vector<GrainRecord> grains;
    grains.reserve(static_cast<std::size_t>(pad.GetSize()));
    for (std::int32_t i = 0; i < pad.GetSize(); ++i) {
        const auto file = presentFile(pad.GetAt(i), files);
        if (!file) continue;
        grains.push_back(pad.GetAt(i).ToRecord());
        grains.back().binFile = *file;
    }
    return grains;
}

/// As many records as there are entries, in the order of the pads. Where a pad has no entry the record
/// before it comes once more, and zeros where none came yet.
std::vector<KeyMapRecord> keysOf(const CKeyMap& keyMap) {
    std::vector<KeyMapRecord> keys;
    KeyMapRecord last{};
    for (std::int32_t pad = 0; pad < keyMap.GetSize(); ++pad) {
        if (const TrackKeyInfoImp* entry = keyMap.find(pad)) {
            last = {entry->pad,     entry->lowKey,      entry->highKey,
                    entry->rootKey, entry->lowVelocity, entry->highVelocity};
        }
        keys.push_back(last);
    }
    return keys;
}

}  // namespace

GrainRecord CGrooveEvent::ToRecord() const {
    GrainRecord record;
    record.binFile = binFile;
    record.binGrain = binGrain;
    record.startTicks = startTicks;
    record.startSamples = startSamples;
    record.lengthTicks = lengthTicks;
    record.lengthSamples = lengthSamples;
    record.tailLengthSamples = tailLengthSamples;
    record.tempoLocked = tempoLocked;
    record.pitchRatio = pitchRatio;
    record.transpose = transpose;
    record.volume = volume;
    record.pan = pan;
    record.tailOn = tailOn;
    record.sampleOffset = sampleOffset;
    record.peakOffset = peakOffset;
    record.peakCount = peakCount;
    return record;
}

TrackRecord CGrooveTrack::ToRecord() const {
    TrackRecord record;
    record.lengthSamples = lengthSamples;
    record.lengthTicks = lengthTicks;
    record.looping = looping;
    record.synced = synced;
    record.mute = mute;
    record.solo = solo;
    record.oneShot = oneShot;
    record.tailOn = tailOn;
    record.followKey = followKey;
    record.rootNote = rootNote;
    record.output = output;
    record.midiChannel = midiChannel;
    record.volume = volume;
    record.pan = pan;
    return record;
}

Project CGrooveSampler::takeProject() {
    CAutoLock lock(*this);
    Project project;
    project.auditionEnabled = auditionEnabled;
    project.keys = keysOf(keyMap);
    for (const auto& file : binFiles) {
        project.files.push_back({file->ToRecord(), file->name, file->path, file->sample, grainsOf(*file)});
    }
    for (std::size_t pad = 0; pad < pads.size(); ++pad) {
        project.pads[pad] = {pads[pad]->ToRecord(), padGrainsOf(*pads[pad], binFiles)};
    }
    return project;
}

// The state is a matter of microseconds under the lock. The bytes go out from it with the lock free: no block
// waits for the disk.

HRESULT CGrooveSampler::SaveProject(std::uint32_t, const char* path) try {
    return path ? saveProject(takeProject(), pathFromWide(wideFromSystem(withProjectExtension(path))))
                : E_POINTER;
} catch (const std::exception&) {
    return E_FAIL;
}

HRESULT CGrooveSampler::SaveState(IStream* stream) try {
    return stream ? saveProject(takeProject(), *stream) : E_POINTER;
} catch (const std::exception&) {
    return E_FAIL;
}

}  // namespace marnoth
