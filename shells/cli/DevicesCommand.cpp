#include "shells/cli/DevicesCommand.h"

#include <algorithm>
#include <span>

#include "shellkit/files/Failure.h"
#include "shellkit/text/PlainText.h"
#include "shells/cli/InfoJson.h"

namespace marnoth {

namespace {

Json orNull(const std::string& text) {
    return text.empty() ? Json() : Json(text);
}

Json outputJson(const SoundSystem::Output& output) {
    Json json{{"name", output.name}, {"default", output.isDefault}};
    json["rate"] = output.rate ? Json(output.rate) : Json();
    json["rates"] = Json::array();
    for (const std::uint32_t rate : output.rates) json["rates"].push_back(rate);
    return json;
}

Json systemJson(const SoundSystem& system) {
    Json json{{"name", system.name}, {"missing", orNull(system.missing)}};
    json["outputs"] = Json::array();
    for (const SoundSystem::Output& output : system.outputs) json["outputs"].push_back(outputJson(output));
    json["midiPorts"] = system.midiPorts;
    json["missingMidi"] = orNull(system.missingMidi);
    return json;
}

void printSoundJson(const std::vector<SoundSystem>& systems, std::ostream& out) {
    Json list = Json::array();
    for (const SoundSystem& system : systems) list.push_back(systemJson(system));
    out << printed({{"systems", list}});
}

std::string namesOf(std::span<const SoundSystem> systems) {
    std::vector<std::string> names(systems.size());
    std::ranges::transform(systems, names.begin(), &SoundSystem::name);
    return joined(names, ", ");
}

/// The outputs of `systems`, which all are missing for the same reason where there are several.
void printOutputs(std::span<const SoundSystem> systems, std::ostream& out) {
    const SoundSystem& system = systems.front();
    out << namesOf(systems);
    if (!system.missing.empty())
        out << ": " << inOneLine(system.missing);
    else if (system.takesAnyName)
        out << ": any, as in --audio " << system.name << ":take.wav";
    else if (!system.outputs.empty())
        out << ':';
    out << '\n';
    for (const SoundSystem::Output& output : system.outputs) {
        out << "  " << inOneLine(output.name);
        if (output.rate) out << ", " << output.rate << " Hz";
        out << (output.isDefault ? ", the default\n" : "\n");
    }
}

std::span<const SoundSystem> missingAlike(std::span<const SoundSystem> systems) {
    const std::string& missing = systems.front().missing;
    const auto other = std::ranges::find_if(systems.subspan(1), [&](const SoundSystem& system) {
        return missing.empty() || system.missing != missing;
    });
    return {systems.begin(), other};
}

bool haveOneMidi(const SoundSystem& one, const SoundSystem& other) {
    return one.midiPorts == other.midiPorts && one.missingMidi == other.missingMidi;
}

/// The ports of `systems`, which all have the same.
void printMidi(const std::vector<SoundSystem>& systems, std::ostream& out) {
    const SoundSystem& first = systems.front();
    out << "MIDI with " << namesOf(systems) << ':';
    if (!first.missingMidi.empty())
        out << ' ' << inOneLine(first.missingMidi);
    else if (first.midiPorts.empty())
        out << " no ports";
    out << '\n';
    for (const std::string& port : first.midiPorts) out << "  " << inOneLine(port) << '\n';
}

void printSound(std::vector<SoundSystem> systems, std::ostream& out) {
    for (std::span<const SoundSystem> rest(systems); !rest.empty();) {
        const auto alike = missingAlike(rest);
        printOutputs(alike, out);
        rest = rest.subspan(alike.size());
    }
    std::erase_if(systems, [](const SoundSystem& system) { return !system.missing.empty(); });
    while (!systems.empty()) {
        const SoundSystem first = systems.front();
        const auto rest =
            std::stable_partition(systems.begin(), systems.end(),
                                  [&](const SoundSystem& system) { return haveOneMidi(first, system); });
        printMidi({systems.begin(), rest}, out);
        systems.erase(systems.begin(), rest);
    }
}

}  // namespace

void runDevices(const DevicesOptions& options, const ListSound& list, const Streams& streams) {
    if (!list) throw WrongUse("this program has no sound");
    const std::vector<SoundSystem> systems = list();
    if (options.json)
        printSoundJson(systems, streams.out);
    else
        printSound(systems, streams.out);
}

}  // namespace marnoth
