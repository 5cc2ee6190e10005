#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "engine/model/GrooveTrack.h"
#include "seam/Limits.h"

namespace marnoth {

using Pads = std::array<std::unique_ptr<CGrooveTrack>, kPads>;

/// The pads' past and future: 129 snapshots of all sixteen pads, in a ring.
///
/// Owns its snapshots; a snapshot shares samples with the pads that it copies, and copies everything else.
/// Everything here runs under the engine's lock and may allocate: never inside a block.
class UndoRing {
public:
    static constexpr std::int32_t kSlots = 129;

    /// Copies `pads` behind the present state and forgets whatever could have been redone. When the ring is
    /// full the oldest state goes.
    void push(const Pads& pads);
    /// Swaps `pads` with the state before. False, with nothing changed, when there is none.
    bool undo(Pads& pads);
    /// Swaps `pads` with the state that the last undo took back. False when there is none.
    bool redo(Pads& pads);
    /// Forgets everything.
    void clear();

private:
    std::array<Pads, kSlots> slots_;
    std::int32_t cursor_ = 0;
    std::int32_t newest_ = 0;
    std::int32_t oldest_ = 0;
};

}  // namespace marnoth
