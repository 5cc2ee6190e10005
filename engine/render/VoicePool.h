#pragma once

#include <cstddef>
#include <vector>

#include "engine/render/Voice.h"

namespace marnoth {

/// The voices of notes: storage for as many as are ever likely to sound at a time, taken in advance, so that
/// a note that starts or ends in a block asks the system for nothing. Beyond it voices come from the heap.
///
/// Under the engine's lock.
class VoicePool {
public:
    static constexpr std::size_t kReady = 1024;

    VoicePool();
    VoicePool(const VoicePool&) = delete;
    VoicePool& operator=(const VoicePool&) = delete;

    /// A voice in its first state; null without memory. Goes back by `give`.
    VoiceState* take() noexcept;
    void give(VoiceState* voice) noexcept;

private:
    bool owns(const VoiceState* voice) const;

    std::vector<VoiceState> ready_;
    std::vector<VoiceState*> free_;  ///< of `ready_`; the last one given is the first taken
};

}  // namespace marnoth
