#include "shells/desktop/audio/rtaudio/RtAudioSystem.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "shells/desktop/audio/rtaudio/RtAudioDriver.h"
#include "shells/desktop/audio/rtaudio/RtDevices.h"

namespace marnoth {

std::vector<AudioDevice> RtAudioSystem::devices() {
    RtAudio audio(api_);
    std::vector<AudioDevice> devices;
    for (RtDevice& found : rtDevices(audio)) devices.push_back(std::move(found.device));
    const auto playing = playing_.lock();
    const auto isIt = [&](const AudioDevice& device) { return device.name == playing->name; };
    if (playing && std::ranges::none_of(devices, isIt)) devices.push_back(*playing);
    return devices;
}

std::string RtAudioSystem::missing() {
    RtAudio audio(api_);
    if (!rtDevices(audio).empty()) return {};
    if (audio.getDeviceCount() > 0) return name_ + " has no outputs that are free.";
    return api_ == RtAudio::LINUX_PULSE ? "No PulseAudio server runs." : "ALSA knows no sound card.";
}

std::unique_ptr<AudioDriver> RtAudioSystem::open(const AudioWish& wish, AudioClient& client) {
    auto audio = std::make_unique<RtAudio>(api_);
    const std::vector<RtDevice> devices = rtDevices(*audio);
    const RtDevice* const device = findDevice(devices, wish.device);
    if (!device && devices.empty()) throw std::runtime_error(missing());
    if (!device)
        throw std::runtime_error(name_ + " has no output " + wish.device + ", or another program holds it.");
    auto playing = std::make_shared<const AudioDevice>(device->device);
    playing_ = playing;
    return std::make_unique<RtAudioDriver>(std::move(audio), device->number, std::move(playing), wish,
                                           client);
}

}  // namespace marnoth
