#include <exception>
#include <optional>
#include <vector>

#include "engine/GrooveSampler.h"
#include "platform/text/Text.h"
#include "project/ProjectName.h"
#include "project/ProjectSave.h"

namespace marnoth {
namespace {

std::vector<GrainSettings> grainsOf(const CGrooveTrack& track) {
    std::vector<GrainSettings> grains;
    grains.reserve(static_cast<std::size_t>(track.GetSize()));
    track.grains().forEach([&](const CGrooveEvent& grain) { grains.push_back(grain.settings()); });
    return grains;
}

bool isCutFrom(const CGrooveEvent& grain, const LoopBin& bin, std::int32_t file) {
    return bin.has(file) && bin[file].sample == grain.sample;
}

/// The number that the file of a pad's grain has now; none when the file is gone. Undo brings back grains
/// with the numbers that files had before one was removed.
std::optional<std::int32_t> presentFile(const CGrooveEvent& grain, const LoopBin& bin) {
    if (isCutFrom(grain, bin, grain.binFile)) return grain.binFile;
    for (std::int32_t file = 0; file < bin.size(); ++file) {
        if (isCutFrom(grain, bin, file)) return file;
    }
    return std::nullopt;
}

/// Without the grains whose file is gone: their audio goes into no project, and a load would give them that
/// of another file.
std::vector<GrainSettings> padGrainsOf(const CGrooveTrack& pad, const LoopBin& bin) {
    std::vector<GrainSettings> grains;
    grains.reserve(static_cast<std::size_t>(pad.GetSize()));
    pad.grains().forEach([&](const CGrooveEvent& grain) {
        const auto file = presentFile(grain, bin);
        if (!file) return;
        grains.push_back(grain.settings());
        grains.back().binFile = *file;
    });
    return grains;
}

/// As many records as there are entries, in the order of the pads. Where a pad has no entry the record
/// before it comes once more, and zeros where none came yet.
std::vector<KeyMapRecord> keysOf(const CKeyMap& keyMap) {
    std::vector<KeyMapRecord> keys;
    KeyMapRecord last{};
    for (std::int32_t pad = 0; pad < keyMap.GetSize(); ++pad) {
        if (const KeyMapRecord* entry = keyMap.find(pad)) last = *entry;
        keys.push_back(last);
    }
    return keys;
}

}  // namespace

Project CGrooveSampler::takeProject() {
    Model now;
    Project project;
    {
        const CAutoLock lock(*this);
        now = bank_.present();
        project.auditionEnabled = auditionEnabled_;
    }
    project.keys = keysOf(now.keys);
    for (const BinFile& file : now.bin) {
        project.files.push_back(
            {file.track.settings(), file.names->name, file.names->path, file.sample, grainsOf(file.track)});
    }
    for (std::size_t pad = 0; pad < now.pads.size(); ++pad) {
        project.pads[pad] = {now.pads[pad].settings(), padGrainsOf(now.pads[pad], now.bin)};
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
