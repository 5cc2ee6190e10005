#include "engine/render/VoicePool.h"

#include <functional>
#include <new>

namespace marnoth {

VoicePool::VoicePool() : ready_(kReady) {
    free_.reserve(kReady);
    for (std::size_t i = kReady; i-- > 0;) free_.push_back(&ready_[i]);
}

VoiceState* VoicePool::take() noexcept {
    if (free_.empty()) return new (std::nothrow) VoiceState;
    VoiceState* const voice = free_.back();
    free_.pop_back();
    *voice = {};
    return voice;
}

void VoicePool::give(VoiceState* voice) noexcept {
    if (owns(voice)) {
        free_.push_back(voice);
    } else {
        delete voice;
    }
}

bool VoicePool::owns(const VoiceState* voice) const {
    // Built-in comparison says nothing of pointers into different arrays.
    return !std::less<>()(voice, ready_.data()) && std::less<>()(voice, ready_.data() + kReady);
}

}  // namespace marnoth
