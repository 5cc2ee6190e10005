#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "engine/loopbin/LoopBin.h"
#include "engine/model/KeyMap.h"
#include "engine/model/Pads.h"

namespace marnoth {

/// What a block plays: all of it values that share what is large in them, so that taking a copy or putting
/// the next in place is a matter of moments.
struct Model {
    Pads pads;
    LoopBin bin;
    CKeyMap keys;
    CGrooveTrack audition;      ///< the one copy of the grain that is auditioned
    std::uint32_t anySolo = 0;  ///< 1 while any pad has solo set

    void recomputeAnySolo();
};

/// The model, between the threads that edit it and the one that plays it.
///
/// Everything under the engine's lock. What takes long is built beside the present state with the lock free,
/// and put in place under it; the version tells whether the state has changed in between. A block goes on
/// with the state that it found, also when somebody whom it calls changes the model meanwhile.
class PadBank {
public:
    const Model& present() const { return states_[present_]; }
    /// The present state, to be changed; counts as a new version. Neither allocates nor frees, but for a
    /// change from within a block behind another such change.
    Model& change() {
        noteChange();
        return changeUnsaved();
    }
    /// The same for what no project keeps, as what is auditioned.
    Model& changeUnsaved() {
        ++version_;
        return writable();
    }
    /// The same for what a mixer sets (`PadMix`), which is no new version: whoever builds the next state
    /// takes over what has changed of it meanwhile (`carryOver`).
    Model& changeMix() {
        noteChange();
        return writable();
    }
    std::uint64_t version() const { return version_; }
    /// How often what a project keeps may have changed.
    std::uint64_t changes() const { return changes_; }
    /// A change of what a project keeps beside the model.
    void noteChange() { ++changes_; }

    /// The state that a block plays, from here to `endBlock`. Streaming thread.
    const Model& beginBlock();
    void endBlock() { playing_ = kNone; }

    /// True when the bank still holds what a block was played with while somebody changed the model from
    /// within it.
    bool hasLeftOver() const { return leftOver_ && playing_ == kNone; }
    /// Gives that into `former`, to be destroyed with the lock free.
    void takeLeftOver(Model& former);

private:
    static constexpr std::size_t kNone = 2;

    Model& writable();

    std::array<Model, 2> states_;
    std::size_t present_ = 0;
    std::size_t playing_ = kNone;  ///< the state that a block is under way with
    bool leftOver_ = false;        ///< the other state holds what a block was played with
    std::uint64_t version_ = 0;
    std::uint64_t changes_ = 0;
};

}  // namespace marnoth
