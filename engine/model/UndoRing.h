#pragma once

#include <array>
#include <cstdint>

#include "engine/model/PadPhase.h"
#include "engine/model/Pads.h"

namespace marnoth {

/// The pads with the phases that the render has given them: one state that undo can go back to.
struct PadsState {
    Pads pads;
    PadPhases phases{};
};

/// The pads' past and future: 129 states of all sixteen pads, in a ring.
///
/// States share their grains with the pads and with each other. No operation allocates or frees: what a
/// state lets go of comes back to the caller, so that a lock needn't be held while it goes. All under the
/// engine's lock.
class UndoRing {
public:
    static constexpr std::int32_t kSlots = 129;

    /// Puts `state` behind the present and forgets whatever could have been redone. When the ring is full the
    /// oldest state goes. Afterwards `state` holds what stood in its place.
    void push(PadsState& state) noexcept;
    /// The state before the present, to be swapped with it; null when there is none.
    PadsState* undo() noexcept;
    /// The state that the last undo took back, to be swapped with the present; null when there is none.
    PadsState* redo() noexcept;
    /// Forgets everything. Alone in this it frees what the states hold.
    void clear() noexcept;

private:
    PadsState& slot(std::int32_t row) { return slots_[static_cast<std::size_t>(row)]; }

    std::array<PadsState, kSlots> slots_;
    std::int32_t cursor_ = 0;
    std::int32_t newest_ = 0;
    std::int32_t oldest_ = 0;
};

}  // namespace marnoth
