#include "shells/desktop/AudioSwitch.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace marnoth {

namespace {

constexpr std::uint8_t kNoteOnMessage = 0x90;
constexpr std::uint8_t kNoteOffMessage = 0x80;
constexpr std::size_t kKeysOfChannel = 128;

}  // namespace

bool AudioSwitch::give(const void* driver, const std::function<bool(AudioClient&)>& prepare) {
    constexpr std::chrono::microseconds kRest{100};
    while (isBusy_.exchange(true, std::memory_order_acquire)) std::this_thread::sleep_for(kRest);
    endHeld();
    present_ = nullptr;
    const bool isReady = prepare(client_);
    if (isReady) present_ = driver;
    leave();
    return isReady;
}

/// Asks first who is let through, so that one that isn't is never in the way of the one that is.
bool AudioSwitch::enter(const void* driver) {
    if (present_ != driver || isBusy_.exchange(true, std::memory_order_acquire)) return false;
    if (present_ == driver) return true;
    leave();
    return false;
}

void AudioSwitch::midi(const void* driver, std::int32_t frame, std::uint8_t status, std::uint8_t data1,
                       std::uint8_t data2) {
    if (!enter(driver)) return;
    noteHeld(status, data1, data2);
    client_.midi(frame, status, data1, data2);
    leave();
}

void AudioSwitch::follow(const void* driver, const LiveTransport& told) {
    if (!enter(driver)) return;
    client_.follow(told);
    leave();
}

MusicalPlace AudioSwitch::placeOf(const void* driver, std::int64_t frame) {
    if (!enter(driver)) return {};
    const MusicalPlace place = client_.placeOf(frame);
    leave();
    return place;
}

void AudioSwitch::render(const void* driver, std::int32_t frames, OutputPointers outputs) {
    if (enter(driver)) {
        for (std::uint32_t missed = dropouts_.exchange(0); missed > 0; --missed) client_.dropout();
        client_.render(frames, outputs);
        return leave();
    }
    for (float* const output : outputs)
        if (output) std::fill_n(output, frames, 0.0f);
}

void AudioSwitch::noteHeld(std::uint8_t status, std::uint8_t key, std::uint8_t velocity) {
    const std::uint8_t kind = status & 0xF0;
    if (kind != kNoteOnMessage && kind != kNoteOffMessage) return;
    held_[(status & 0x0F) * kKeysOfChannel + key % kKeysOfChannel] = kind == kNoteOnMessage && velocity > 0;
}

void AudioSwitch::endHeld() {
    for (std::size_t note = 0; held_.any(); ++note) {
        if (!held_[note]) continue;
        held_.reset(note);
        client_.midi(0, static_cast<std::uint8_t>(kNoteOffMessage | (note / kKeysOfChannel)),
                     static_cast<std::uint8_t>(note % kKeysOfChannel), 0);
    }
}

}  // namespace marnoth
