#pragma once

#include <array>
#include <memory>
#include <vector>

#include "engine/GrooveSampler.h"
#include "seam/Limits.h"

namespace marnoth {

struct CGrooveSampler::FormerProject {
    using Grains = std::vector<std::unique_ptr<CGrooveEvent>>;

    UndoRing undoRing;
    Grains auditioned;
    std::array<Grains, kPads> grains;
    std::array<std::unique_ptr<CGrooveTrack>, kBinFiles> files;
};

}  // namespace marnoth
