#include "shells/desktop/audio/JackSystem.h"

#include <algorithm>
#include <stdexcept>

#include "shells/desktop/audio/JackDriver.h"

namespace marnoth {

JackSystem::JackSystem(const JackLibrary* jack) : jack_(jack) {
    // The library tells on standard error what we tell ourselves.
    if (jack_) jack_->set_error_function([](const char*) {});
}

std::shared_ptr<const JackClient> JackSystem::client() try {
    if (!jack_) return nullptr;
    if (auto playing = playing_.lock()) return playing;
    return std::make_shared<const JackClient>(*jack_, "Marnoth asks");
} catch (const std::runtime_error&) {
    return nullptr;
}

std::vector<AudioDevice> JackSystem::devices() {
    std::vector<AudioDevice> devices;
    const auto client = this->client();
    if (!client) return devices;
    const std::uint32_t rate = jack_->get_sample_rate(client->handle());
    for (const std::string& port :
         client->ports(JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput | JackPortIsPhysical)) {
        const std::string name = port.substr(0, port.find(':'));
        const auto isIt = [&](const AudioDevice& device) { return device.name == name; };
        if (std::ranges::none_of(devices, isIt)) devices.push_back({name, rate, {rate}, devices.empty()});
    }
    return devices;
}

std::string JackSystem::missing() {
    if (!jack_) return "JACK isn't installed.";
    return client() ? "" : "No JACK server runs.";
}

std::vector<std::string> JackSystem::midiPorts() {
    const auto client = this->client();
    return client ? client->ports(JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput) : std::vector<std::string>();
}

std::unique_ptr<AudioDriver> JackSystem::open(const AudioWish& wish, AudioClient& client) {
    if (!jack_) throw std::runtime_error("JACK isn't installed.");
    auto connection = std::make_shared<const JackClient>(*jack_, "Marnoth");
    playing_ = connection;
    return std::make_unique<JackDriver>(*jack_, std::move(connection), wish, client);
}

}  // namespace marnoth
