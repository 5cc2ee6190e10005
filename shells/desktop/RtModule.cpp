#include "shells/desktop/RtModule.h"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>

#include "shells/desktop/MissingSystem.h"

namespace marnoth {

namespace {

namespace fs = std::filesystem;

constexpr const char* kModule = "marnoth-rtaudio.so";

fs::path modulePath() {
    Dl_info here;
    if (dladdr(reinterpret_cast<const void*>(&loadRtSystems), &here) == 0) return {};
    return fs::path(here.dli_fname).parent_path() / kModule;
}

RtSystems missing(const std::string& why) {
    RtSystems systems;
    for (const std::string name : {"PulseAudio", "ALSA"})
        systems.audio.push_back(std::make_shared<MissingSystem>(name, name + " can't be used: " + why + "."));
    return systems;
}

}  // namespace

RtSystems loadRtSystems() {
    std::error_code ignored;
    const fs::path module = modulePath();
    if (!fs::exists(module, ignored)) return missing(std::string(kModule) + " isn't installed");
    // Never unloaded: its libraries have threads and handlers of their own.
    void* const library = dlopen(module.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) return missing(dlerror());
    const auto make = reinterpret_cast<MakeRtSystems>(dlsym(library, kMakeRtSystems));
    if (!make) return missing(module.string() + " is damaged");
    RtSystems systems;
    make(systems);
    return systems;
}

}  // namespace marnoth
