#pragma once

#include <array>
#include <memory>
#include <new>

#include "engine/loopbin/LoopBin.h"
#include "engine/model/GrainList.h"
#include "engine/model/UndoRing.h"
#include "seam/Limits.h"

namespace marnoth {

/// What a project consisted of, for its owner to destroy with the engine's lock free; and the empty ring of
/// undo that takes the place of the full one, made before the lock is taken. Null without memory for it: the
/// ring is emptied where it is then, since a project must always go.
struct FormerProject {
    std::unique_ptr<UndoRing> undo{new (std::nothrow) UndoRing};
    LoopBin bin;
    GrainList audition;
    std::array<GrainList, kPads> pads;
};

}  // namespace marnoth
