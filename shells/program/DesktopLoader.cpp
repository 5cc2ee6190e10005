#include "shells/program/DesktopLoader.h"

#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace marnoth {

namespace {

namespace fs = std::filesystem;

constexpr const char* kModule = "marnoth-desktop.so";

/// Where the module may lie, seen from the program's own folder: installed, or in a build tree.
fs::path findModule() {
    std::error_code ignored;
    const fs::path folder = fs::read_symlink("/proc/self/exe", ignored).parent_path();
    for (const char* const place : {"../lib/marnoth", "../desktop", "."}) {
        fs::path module = folder / place / kModule;
        if (fs::exists(module, ignored)) return module;
    }
    throw std::runtime_error("the window's part of the program, " + std::string(kModule) +
                             ", isn't installed");
}

void* findInModule(const char* name) {
    const fs::path module = findModule();
    // Never unloaded: what it hands to the system may be called up to the program's end.
    void* const library = dlopen(module.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library)
        throw std::runtime_error("the window's part of the program can't be used: " + std::string(dlerror()));
    void* const found = dlsym(library, name);
    if (!found) throw std::runtime_error(module.string() + " is damaged");
    return found;
}

}  // namespace

int playOnDesktop(const DesktopOptions& options, std::ostream& errors) {
    using Play = int (*)(const DesktopOptions&, std::ostream&);
    return reinterpret_cast<Play>(findInModule("marnothDesktop"))(options, errors);
}

AudioSystems desktopAudio() {
    AudioSystems systems;
    reinterpret_cast<void (*)(AudioSystems&)>(findInModule("marnothAudioSystems"))(systems);
    return systems;
}

}  // namespace marnoth
