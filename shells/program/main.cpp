#include <iostream>
#include <optional>
#include <string>

#include "platform/files/Leftover.h"
#include "shells/cli/CommandLine.h"
#include "shells/cli/Console.h"
#ifndef _WIN32
#include "shells/program/DesktopLoader.h"
#endif

namespace {

using namespace marnoth;

#ifdef _WIN32
constexpr std::nullptr_t kPlay = nullptr;
constexpr std::nullptr_t kListSound = nullptr;
#else
/// Nothing for what isn't told.
std::optional<bool> answerOf(const std::string& told) {
    return told.empty() ? std::nullopt : std::optional(told == "yes");
}

int kPlay(const PlayOptions& told, const Streams& streams) {
    DesktopOptions options;
    options.files = told.files;
    options.audio = told.audio;
    options.tempo = told.tempo;
    options.songTempo = answerOf(told.songTempo);
    options.repeatsSong = answerOf(told.repeat);
    options.scale = told.scale;
    options.verbose = told.verbose;
    options.wish = {{}, told.midi, told.rate, told.block};
    return playOnDesktop(options, streams.errors);
}

SoundSystem describe(AudioSystem& audio) {
    SoundSystem system;
    system.name = audio.name();
    system.takesAnyName = audio.needsDevice();
    for (const AudioDevice& device : audio.devices())
        system.outputs.push_back({device.name, device.rate, device.rates, device.isDefault});
    if (system.outputs.empty()) system.missing = audio.missing();
    system.midiPorts = audio.midiPorts();
    if (system.midiPorts.empty()) system.missingMidi = audio.missingMidi();
    return system;
}

std::vector<SoundSystem> kListSound() {
    std::vector<SoundSystem> systems;
    for (const auto& audio : desktopAudio()) systems.push_back(describe(*audio));
    return systems;
}
#endif

}  // namespace

int main(int argc, char** argv) {
    prepareConsole();
    removeLeftoversOnSignals();
    return runCommandLine(consoleArguments(argc, argv), std::cout, std::cerr, kPlay, kListSound);
}
