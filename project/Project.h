#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/com/RefPtr.h"
#include "project/ProjectRecords.h"
#include "sample/WaveMem.h"
#include "seam/IGrooveSampler.h"
#include "seam/Limits.h"

namespace marnoth {

/// One Loop Bin file of a project, audio and all.
struct ProjectFile {
    TrackSettings settings;
    std::wstring name;
    std::wstring path;  ///< remembered, never looked up
    /// 32-bit float, one or two channels, at the rate at which the project was saved. A writer shares it with
    /// the engine; a reader's has no peak table yet.
    RefPtr<CWaveMem> wave;
    std::vector<GrainSettings> grains;
};

struct ProjectPad {
    TrackSettings settings;
    std::vector<GrainSettings> grains;
};

/// What a project keeps: everything but undo, voices and the editor's view. It is what `writeProject` writes
/// and what `readProject` reads, free of engine and lock: records by value, and shared samples, which nobody
/// changes any more.
struct Project {
    std::uint32_t auditionEnabled = 0;
    std::vector<KeyMapRecord> keys;  ///< at most 16, in the order of the file
    std::vector<ProjectFile> files;  ///< at most 16, in the order of the Loop Bin
    std::array<ProjectPad, kPads> pads;
};

/// Limits of the form. A writer keeps them, a reader refuses what breaks them.
inline constexpr std::uint32_t kProjectVersion = 1;
inline constexpr std::int64_t kLongestProjectTrack = 12288000;  ///< frames: 128 seconds at 96000 Hz
inline constexpr std::size_t kLongestProjectText = 259;         ///< bytes
inline constexpr std::uint32_t kLowestProjectRate = 11025;      ///< Hz
inline constexpr std::uint32_t kHighestProjectRate = 96000;     ///< Hz

}  // namespace marnoth
