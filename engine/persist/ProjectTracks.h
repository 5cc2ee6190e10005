#pragma once

#include <array>
#include <memory>
#include <vector>

#include "engine/model/GrooveTrack.h"
#include "project/Project.h"
#include "seam/Limits.h"
#include "seam/LoadFault.h"

namespace marnoth {

/// The tracks of a project at the engine's rate, before anybody else can see them.
struct ProjectTracks {
    std::vector<std::unique_ptr<CGrooveTrack>> files;
    std::array<std::unique_ptr<CGrooveTrack>, kPads> pads;
};

/// Makes the tracks of a project that `readProject` has read, at the rate of `format`: audio is resampled,
/// all frame numbers are scaled by the ratio of the rates, tails and peak tables are built. A pad's grain
/// that no file supplies is dropped. Takes the waves out of `project`.
///
/// The fault is `noMemory`, or a `badValue`: `tailFrames` for more tails than the audio justifies, `binGrain`
/// for a pad's grain that names a grain below 0. Long work: no lock may be held for it.
LoadFault buildTracks(Project& project, const WAVEFORMATEX& format, CPziSynthContext* context,
                      ProjectTracks& tracks);

}  // namespace marnoth
