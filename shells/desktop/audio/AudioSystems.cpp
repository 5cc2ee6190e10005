#include "shells/desktop/audio/AudioSystems.h"

#include <algorithm>
#include <mutex>
#include <stdexcept>
#include <utility>

#include "shells/desktop/audio/FileAudioSystem.h"
#include "shells/desktop/audio/JackSystem.h"
#include "shells/desktop/audio/NullSystem.h"
#include "shells/desktop/audio/PartOfName.h"
#include "shells/desktop/audio/Patience.h"
#include "shells/desktop/audio/RtModule.h"
#include "shells/desktop/midi/SystemWithMidi.h"

namespace marnoth {

namespace {

class OneCallSystem final : public AudioSystem {
public:
    explicit OneCallSystem(std::shared_ptr<AudioSystem> system) : system_(std::move(system)) {}

    std::string name() const override { return system_->name(); }
    bool needsDevice() const override { return system_->needsDevice(); }
    std::vector<AudioDevice> devices() override {
        const std::lock_guard lock(mutex_);
        return system_->devices();
    }
    std::vector<std::string> midiPorts() override {
        const std::lock_guard lock(mutex_);
        return system_->midiPorts();
    }
    std::string missing() override {
        const std::lock_guard lock(mutex_);
        return system_->missing();
    }
    std::string missingMidi() override {
        const std::lock_guard lock(mutex_);
        return system_->missingMidi();
    }
    std::unique_ptr<AudioDriver> open(const AudioWish& wish, AudioClient& client) override {
        const std::lock_guard lock(mutex_);
        return system_->open(wish, client);
    }

private:
    const std::shared_ptr<AudioSystem> system_;
    std::mutex mutex_;
};

/// By a name in small letters, whole or its beginning.
std::shared_ptr<AudioSystem> systemNamed(const AudioSystems& systems, const std::string& name) {
    const bool isNone = name == "null" || name == "none";
    const std::string wanted = isNone ? inSmallLetters(NullSystem::kName) : name;
    const auto found = std::ranges::find_if(
        systems, [&](const auto& system) { return inSmallLetters(system->name()).starts_with(wanted); });
    return wanted.empty() || found == systems.end() ? nullptr : *found;
}

std::optional<AudioChoice> deviceWith(const AudioSystems& systems, const std::string& part,
                                      std::chrono::milliseconds patience) {
    std::string silent;
    for (const auto& system : systems) {
        const auto devices = within(patience, [system] { return system->devices(); });
        if (!devices && silent.empty()) silent = system->name();
        for (const AudioDevice& device : devices.value_or(std::vector<AudioDevice>()))
            if (isPartOfName(part, device.name)) return AudioChoice{system, device.name};
    }
    if (!silent.empty()) throw std::runtime_error(silent + " doesn't answer.");
    return std::nullopt;
}

}  // namespace

AudioSystems audioSystems() {
    RtSystems rt = loadRtSystems();
    AudioSystems systems = std::move(rt.audio);
    systems.push_back(std::make_shared<FileAudioSystem>());
    systems.push_back(std::make_shared<NullSystem>());
    for (auto& system : systems) system = std::make_shared<SystemWithMidi>(std::move(system), rt.midi);
    systems.insert(systems.begin(), std::make_shared<JackSystem>());
    return systems;
}

AudioSystems oneCallAtATime(AudioSystems systems) {
    for (auto& system : systems) system = std::make_shared<OneCallSystem>(std::move(system));
    return systems;
}

std::optional<AudioChoice> findAudio(const AudioSystems& systems, const std::string& name,
                                     std::chrono::milliseconds patience) {
    const std::string wanted = inSmallLetters(name);
    if (auto system = systemNamed(systems, wanted)) return AudioChoice{std::move(system), {}};
    if (const std::size_t colon = name.find(':'); colon != name.npos)
        if (auto system = systemNamed(systems, wanted.substr(0, colon)))
            return AudioChoice{std::move(system), name.substr(colon + 1)};
    return deviceWith(systems, wanted, patience);
}

}  // namespace marnoth
