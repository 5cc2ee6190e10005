#include "shells/desktop/rtaudio/RtAudioSystem.h"

#include <stdexcept>

#include "shells/desktop/rtaudio/RtAudioDriver.h"
#include "shells/desktop/rtaudio/RtDevices.h"

namespace marnoth {

std::vector<AudioDevice> RtAudioSystem::devices() {
    RtAudio audio(api_);
    std::vector<AudioDevice> devices;
    for (RtDevice& found : rtDevices(audio)) devices.push_back(std::move(found.device));
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
    return std::make_unique<RtAudioDriver>(std::move(audio), *device, wish, client);
}

}  // namespace marnoth
