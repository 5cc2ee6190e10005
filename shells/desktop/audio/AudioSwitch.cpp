#include "shells/desktop/audio/AudioSwitch.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace marnoth {

bool AudioSwitch::give(const void* driver, const std::function<bool(AudioClient&)>& prepare) {
    constexpr std::chrono::microseconds kRest{100};
    while (isBusy_.exchange(true, std::memory_order_acquire)) std::this_thread::sleep_for(kRest);
    held_.end([this](std::uint8_t status, std::uint8_t key) { client_.midi(0, status, key, 0); });
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
    held_.take(status, data1, data2);
    client_.midi(frame, status, data1, data2);
    leave();
}

void AudioSwitch::follow(const void* driver, const LiveTransport& told) {
    if (!enter(driver)) return;
    client_.follow(told);
    leave();
}

void AudioSwitch::freewheel(const void* driver) {
    if (!enter(driver)) return;
    client_.freewheel();
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

}  // namespace marnoth
