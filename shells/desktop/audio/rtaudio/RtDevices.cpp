#include "shells/desktop/audio/rtaudio/RtDevices.h"

#include <algorithm>

#include "shells/desktop/audio/PartOfName.h"

namespace marnoth {

std::vector<RtDevice> rtDevices(RtAudio& audio) try {
    std::vector<RtDevice> devices;
    audio.showWarnings(false);
    const unsigned count = audio.getDeviceCount();
    for (unsigned number = 0; number < count; ++number) {
        const RtAudio::DeviceInfo info = audio.getDeviceInfo(number);
        if (!info.probed || info.outputChannels < 2) continue;
        devices.push_back(
            {{info.name, info.preferredSampleRate, info.sampleRates, info.isDefaultOutput}, number});
        std::ranges::sort(devices.back().device.rates);
    }
    return devices;
} catch (const RtAudioError&) {
    return {};
}

const RtDevice* findDevice(const std::vector<RtDevice>& devices, const std::string& name) {
    const auto first = [&](auto fits) {
        const auto found = std::ranges::find_if(devices, fits);
        return found == devices.end() ? nullptr : &*found;
    };
    if (name.empty()) {
        const RtDevice* const usual = first([](const RtDevice& it) { return it.device.isDefault; });
        return usual || devices.empty() ? usual : &devices.front();
    }
    const RtDevice* const whole = first([&](const RtDevice& it) { return it.device.name == name; });
    return whole ? whole : first([&](const RtDevice& it) { return isPartOfName(name, it.device.name); });
}

}  // namespace marnoth
