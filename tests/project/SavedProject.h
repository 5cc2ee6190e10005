#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

#include "project/Project.h"
#include "seam/MusicalTime.h"
#include "support/FloatFormat.h"
#include "support/TempPath.h"
#include "support/WaveFile.h"

namespace marnoth::test {

/// A name for a project in the temporary folder. The project and its backup go with the object.
class ProjectPath {
public:
    ProjectPath() : project_(".mrn"), backup_(project_.path()) { backup_ += ".bak"; }
    ~ProjectPath() {
        std::error_code ignored;
        std::filesystem::remove(backup_, ignored);
    }

    const std::filesystem::path& path() const { return project_.path(); }
    const std::filesystem::path& backup() const { return backup_; }
    const char* c_str() const { return project_.c_str(); }
    const std::string& string() const { return project_.string(); }

private:
    TempPath project_;
    std::filesystem::path backup_;
};

inline Bytes fileBytes(const std::filesystem::path& path) {
    std::error_code missing;
    const std::uintmax_t size = std::filesystem::file_size(path, missing);
    Bytes bytes(missing ? 0 : static_cast<std::size_t>(size));
    std::ifstream in(path, std::ios::binary);
    in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(std::max<std::streamsize>(in.gcount(), 0)));
    return bytes;
}

/// Fields of a saved project by their offsets, little-endian.
struct SavedBytes {
    Bytes bytes;

    template <class T>
    T at(std::size_t offset) const {
        T value{};
        if (offset + sizeof value > bytes.size()) {
            ADD_FAILURE() << "nothing stands at " << offset;
            return value;
        }
        std::memcpy(&value, bytes.data() + offset, sizeof value);
        return value;
    }
    std::uint32_t u32(std::size_t offset) const { return at<std::uint32_t>(offset); }
    std::int32_t i32(std::size_t offset) const { return at<std::int32_t>(offset); }
    std::int64_t i64(std::size_t offset) const { return at<std::int64_t>(offset); }
    std::string text(std::size_t offset, std::size_t length) const {
        if (offset + length > bytes.size()) return "(behind the end)";
        const auto from = bytes.begin() + static_cast<std::ptrdiff_t>(offset);
        return std::string(from, from + static_cast<std::ptrdiff_t>(length));
    }
    std::size_t size() const { return bytes.size(); }
};

/// Whether a save has left a whole form there, by its outer header and its first chunk.
inline bool isSavedProject(const std::filesystem::path& path) {
    const SavedBytes file{fileBytes(path)};
    return file.size() > 12 && file.text(8, 4) == "marn" && file.u32(4) == file.size() - 8 &&
           file.text(12, 4) == "comn";
}

/// A wave of `frames` frames in which every value is different.
inline RefPtr<CWaveMem> countingWave(std::int64_t frames, std::uint32_t rate = 44100,
                                     std::uint16_t channels = 1) {
    RefPtr<CWaveMem> made = CWaveMem::make();
    EXPECT_EQ(made->Create(frames, floatFormat(rate, channels)), S_OK);
    for (std::int64_t i = 0; i < frames * channels; ++i)
        made->samples[static_cast<std::size_t>(i)] = static_cast<float>(i) / 65536;
    made->writeGuardFrame();
    return made;
}

/// The keys of sixteen pads, as an engine has them.
inline std::vector<KeyMapRecord> sixteenKeys() {
    std::vector<KeyMapRecord> keys;
    for (std::int32_t pad = 0; pad < 16; ++pad) keys.push_back({pad, 40 + pad, 40 + pad, 40 + pad, 0, 127});
    return keys;
}

/// One grain over all of a file's wave.
inline GrainSettings wholeGrain(std::int32_t binFile, std::int64_t frames) {
    GrainSettings grain;
    grain.binFile = binFile;
    grain.lengthSamples = frames;
    grain.lengthTicks = kTicks16PerBeat;
    grain.pitchRatio = grain.volume = 1;
    grain.pan = 0.5;
    return grain;
}

/// A Loop Bin file of one grain.
inline ProjectFile projectFile(std::int32_t index, RefPtr<CWaveMem> wave) {
    ProjectFile file;
    file.settings.lengthSamples = wave->frames;
    file.settings.lengthTicks = kTicks16PerBeat;
    file.settings.midiChannel = file.settings.rootNote = -1;
    file.settings.volume = 1;
    file.settings.pan = 0.5f;
    file.name = L"loop";
    file.path = L"loop.wav";
    file.grains = {wholeGrain(index, wave->frames)};
    file.wave = std::move(wave);
    return file;
}

/// A project of the waves given, each file with one grain, and that grain on the pad of the same number.
inline Project projectOf(const std::vector<RefPtr<CWaveMem>>& waves) {
    Project project;
    project.keys = sixteenKeys();
    for (ProjectPad& pad : project.pads) {
        pad.settings.midiChannel = pad.settings.rootNote = -1;
        pad.settings.volume = 1;
        pad.settings.pan = 0.5f;
    }
    for (std::size_t i = 0; i < waves.size(); ++i) {
        project.files.push_back(projectFile(static_cast<std::int32_t>(i), waves[i]));
        if (i < project.pads.size()) project.pads[i] = {project.files[i].settings, project.files[i].grains};
    }
    return project;
}

}  // namespace marnoth::test
