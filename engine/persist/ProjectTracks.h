#pragma once

#include <cstdint>

#include "engine/loopbin/LoopBin.h"
#include "engine/model/Pads.h"
#include "project/Project.h"
#include "seam/LoadFault.h"

namespace marnoth {

/// At what the engine runs.
struct EngineRates {
    WAVEFORMATEX format{};        ///< of its audio
    std::int32_t sampleRate = 0;  ///< of the host, by which tempos are told
};

/// The tracks of a project at the engine's rate, before anybody else can see them.
struct ProjectTracks {
    LoopBin files;
    Pads pads;
};

/// Makes the tracks of a project that `readProject` has read: audio is resampled, all frame numbers are
/// scaled by the ratio of the rates, tails and peak tables are built. A pad's grain that no file supplies is
/// dropped. Takes the waves out of `project`.
///
/// The fault is `noMemory`, or a `badValue`: `tailFrames` for more tails than the audio justifies, `binGrain`
/// for a pad's grain that names a grain below 0. Long work: no lock may be held for it.
LoadFault buildTracks(Project& project, const EngineRates& rates, ProjectTracks& tracks);

}  // namespace marnoth
