#include "shells/desktop/audio/RtModule.h"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>
#include <utility>

#include "shells/desktop/audio/MissingSystem.h"

namespace marnoth {

namespace {

namespace fs = std::filesystem;

constexpr const char* kModule = "marnoth-rtaudio.so";

fs::path modulePath() {
    Dl_info here;
    if (dladdr(reinterpret_cast<const void*>(&loadRtSystems), &here) == 0) return {};
    return fs::path(here.dli_fname).parent_path() / kModule;
}

class NoPorts final : public MidiConnection {
public:
    void look() override {}
};

class MissingMidi final : public MidiSystem {
public:
    explicit MissingMidi(std::string why) : why_(std::move(why)) {}

    std::vector<std::string> ports() override { return {}; }
    std::string missing() override { return why_; }
    std::unique_ptr<MidiConnection> connect(const std::string& /*part*/, MidiReceiver& /*to*/) override {
        return std::make_unique<NoPorts>();
    }

private:
    const std::string why_;
};

/// All say the same, so that it can be told once.
RtSystems missing(const std::string& why) {
    RtSystems systems;
    const std::string sentence = std::string(kModule) + ", the way to PulseAudio and ALSA, " + why + ".";
    for (const std::string name : {"PulseAudio", "ALSA"})
        systems.audio.push_back(std::make_shared<MissingSystem>(name, sentence));
    systems.midi = std::make_shared<MissingMidi>(sentence);
    return systems;
}

}  // namespace

RtSystems loadRtSystems() {
    std::error_code ignored;
    const fs::path module = modulePath();
    if (!fs::exists(module, ignored)) return missing("isn't installed");
    // Never unloaded: its libraries have threads and handlers of their own.
    void* const library = dlopen(module.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) return missing("can't be used: " + std::string(dlerror()));
    const auto make = reinterpret_cast<MakeRtSystems>(dlsym(library, kMakeRtSystems));
    if (!make) return missing("is damaged");
    RtSystems systems;
    make(systems);
    return systems;
}

}  // namespace marnoth
