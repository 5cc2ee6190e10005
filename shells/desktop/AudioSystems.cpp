#include "shells/desktop/AudioSystems.h"

#include <algorithm>
#include <utility>

#include "shells/desktop/FileAudioSystem.h"
#include "shells/desktop/JackSystem.h"
#include "shells/desktop/NullSystem.h"
#include "shells/desktop/RtModule.h"
#include "shells/desktop/SystemWithMidi.h"

namespace marnoth {

namespace {

std::string inSmallLetters(std::string text) {
    for (char& letter : text)
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    return text;
}

AudioSystem* systemNamed(const AudioSystems& systems, const std::string& name) {
    const bool isNone = name == "null" || name == "none";
    const std::string wanted = inSmallLetters(isNone ? NullSystem::kName : name);
    const auto found = std::ranges::find_if(
        systems, [&](const auto& system) { return inSmallLetters(system->name()) == wanted; });
    return found == systems.end() ? nullptr : found->get();
}

std::optional<AudioChoice> deviceWith(const AudioSystems& systems, const std::string& part) {
    for (const auto& system : systems)
        for (const AudioDevice& device : system->devices())
            if (inSmallLetters(device.name).find(part) != part.npos)
                return AudioChoice{system.get(), device.name};
    return std::nullopt;
}

}  // namespace

AudioSystems audioSystems() {
    RtSystems rt = loadRtSystems();
    AudioSystems systems = std::move(rt.audio);
    systems.push_back(std::make_unique<FileAudioSystem>());
    systems.push_back(std::make_unique<NullSystem>());
    if (rt.midi)
        for (auto& system : systems) system = std::make_unique<SystemWithMidi>(std::move(system), rt.midi);
    systems.insert(systems.begin(), std::make_unique<JackSystem>());
    return systems;
}

std::optional<AudioChoice> findAudio(const AudioSystems& systems, const std::string& name) {
    const std::string wanted = inSmallLetters(name);
    if (AudioSystem* const system = systemNamed(systems, wanted)) return AudioChoice{system, {}};
    if (const std::size_t colon = name.find(':'); colon != name.npos)
        if (AudioSystem* const system = systemNamed(systems, wanted.substr(0, colon)))
            return AudioChoice{system, name.substr(colon + 1)};
    return deviceWith(systems, wanted);
}

}  // namespace marnoth
