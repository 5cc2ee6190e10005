#include "hostkit/HeldNotes.h"

#include <utility>

namespace marnoth {

void HeldNotes::noteOn(int channel, int key) {
    ++held_[channel][key];
    ++begun_[key];
    ++begunCount_;
}

void HeldNotes::noteOff(int channel, int key) {
    std::uint32_t& held = held_[channel][key];
    if (held == 0) return;
    --held;
    ++owed_[key];
    ++owedCount_;
}

void HeldNotes::endChannel(int channel) {
    for (int key = 0; key <= kHighestKey; ++key) end(held_[channel][key], key);
}

void HeldNotes::endAll() {
    for (int channel = 0; channel < kMidiChannels; ++channel) endChannel(channel);
}

void HeldNotes::end(std::uint32_t& held, int key) {
    owed_[key] += held;
    owedCount_ += std::exchange(held, 0);
}

}  // namespace marnoth
