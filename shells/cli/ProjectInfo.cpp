#include "shells/cli/ProjectInfo.h"

#include <array>
#include <filesystem>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <vector>

#include "platform/text/Text.h"
#include "sample/NotFinite.h"
#include "seam/Limits.h"
#include "seam/MusicalTime.h"
#include "shellkit/files/FaultText.h"
#include "shellkit/files/ProjectFiles.h"
#include "shellkit/text/InstrumentText.h"
#include "shellkit/text/NoteNames.h"
#include "shellkit/text/PlainText.h"
#include "shells/cli/InfoJson.h"

namespace marnoth {

namespace {

constexpr std::int32_t kOmni = -1;
constexpr std::int32_t kNoRoot = -1;

/// What a loop's length says: beats, and the tempo at which it lasts as long as its frames.
struct Loop {
    double beats = 0;
    std::optional<double> tempo;
};

Loop loopOf(const TrackSettings& settings, std::uint32_t rate) {
    Loop loop{static_cast<double>(settings.lengthTicks) / kTicks16PerBeat, {}};
    if (settings.lengthSamples > 0)
        loop.tempo = loop.beats * 60.0 * rate / static_cast<double>(settings.lengthSamples);
    return loop;
}

double secondsOf(const CWaveMem& wave) {
    return static_cast<double>(wave.frames) / wave.format.nSamplesPerSec;
}

/// Bytes of the audio proper, without the guard frame.
std::int64_t audioBytes(const CWaveMem& wave) {
    return wave.frames * wave.format.nChannels * std::int64_t{sizeof(float)};
}

std::int64_t audioBytes(const Project& project) {
    std::int64_t bytes = 0;
    for (const ProjectFile& file : project.files) bytes += audioBytes(*file.wave);
    return bytes;
}

/// A file that doesn't follow the key was never given a root, whatever number it holds.
bool hasRoot(const ProjectFile& file) {
    return file.settings.followKey != 0 && file.settings.rootNote != kNoRoot;
}

std::vector<std::string> warningsOf(const CWaveMem& wave) {
    const auto values = static_cast<std::size_t>(wave.frames * wave.format.nChannels);
    const std::int64_t count = countNotFinite(std::span<const float>(wave.samples.get(), values));
    return count > 0 ? std::vector{notFiniteText(count)} : std::vector<std::string>{};
}

/// One pad as it is told: its number from 1, and what is set.
struct PadView {
    int number;
    const ProjectPad& pad;

    /// Whether an empty project has it otherwise.
    bool isWorthTelling() const {
        const TrackSettings& it = pad.settings;
        const bool flagged = it.looping || it.synced || it.mute || it.solo || it.tailOn || it.followKey;
        const bool set = it.output || it.midiChannel != kOmni || it.rootNote != kNoRoot ||
                         it.volume != 1.0f || it.pan != 0.5f;
        return !pad.grains.empty() || flagged || set || !it.oneShot || it.lengthTicks != 0;
    }

    std::vector<const char*> flags() const {
        const TrackSettings& it = pad.settings;
        const std::array<std::pair<std::uint32_t, const char*>, 7> all{{{it.looping, "looping"},
                                                                        {it.synced, "synced"},
                                                                        {it.oneShot, "one-shot"},
                                                                        {it.mute, "mute"},
                                                                        {it.solo, "solo"},
                                                                        {it.tailOn, "tail"},
                                                                        {it.followKey, "follow key"}}};
        std::vector<const char*> names;
        for (const auto& [on, name] : all)
            if (on) names.push_back(name);
        return names;
    }
};

std::vector<PadView> padsToTell(const Project& project) {
    std::vector<PadView> views;
    for (int i = 0; i < kPads; ++i) {
        const PadView view{i + 1, project.pads[static_cast<std::size_t>(i)]};
        if (view.isWorthTelling()) views.push_back(view);
    }
    return views;
}

/// A number in a column of four, and the blanks behind it.
std::string column(std::size_t number) {
    std::string text = std::to_string(number);
    return std::string(text.size() < 4 ? 4 - text.size() : 0, ' ') + text + "      ";
}

void printFile(const ProjectFile& file, std::size_t number, std::ostream& out) {
    constexpr const char* kIndent = "          ";
    const CWaveMem& wave = *file.wave;
    const Loop loop = loopOf(file.settings, wave.format.nSamplesPerSec);
    const bool mono = wave.format.nChannels == 1;
    out << column(number) << inOneLine(utf8FromWide(file.name)) << '\n'
        << kIndent << "path    " << inOneLine(utf8FromWide(file.path)) << '\n'
        << kIndent << "format  float, " << wave.format.nChannels << (mono ? " channel, " : " channels, ")
        << wave.format.nSamplesPerSec << " Hz\n"
        << kIndent << "length  " << wave.frames << " frames, " << fixed(secondsOf(wave), 3) << " s, "
        << fixed(loop.beats, 4) << " beats";
    if (loop.tempo) out << " at " << fixed(*loop.tempo, 2) << " BPM";
    if (hasRoot(file)) out << ", root note " << rootName(file.settings.rootNote);
    out << '\n'
        << kIndent << "grains  " << file.grains.size() << '\n'
        << kIndent << "audio   " << audioBytes(wave) << " bytes\n";
    for (const std::string& warning : warningsOf(wave)) out << kIndent << "warning " << warning << '\n';
}

void printPad(const PadView& view, std::ostream& out) {
    const TrackSettings& it = view.pad.settings;
    const std::size_t grains = view.pad.grains.size();
    out << column(static_cast<std::size_t>(view.number)) << grains << (grains == 1 ? " grain, " : " grains, ")
        << fixed(loopOf(it, 0).beats, 4) << " beats";
    for (const char* flag : view.flags()) out << ", " << flag;
    out << ", volume " << fixed(it.volume, 3) << ", pan " << fixed(it.pan, 3) << ", output "
        << (it.output ? std::to_string(it.output) : "mix") << ", channel "
        << (it.midiChannel == kOmni ? "any" : std::to_string(it.midiChannel + 1));
    if (it.rootNote != kNoRoot) out << ", root note " << rootName(it.rootNote);
    out << '\n';
}

void printKeys(const KeyMapRecord& keys, std::ostream& out) {
    out << column(static_cast<std::size_t>(keys.pad) + 1) << noteName(keys.lowKey);
    if (keys.highKey != keys.lowKey) out << " to " << noteName(keys.highKey);
    if (keys.rootKey != keys.lowKey || keys.highKey != keys.lowKey)
        out << ", root " << noteName(keys.rootKey);
    if (keys.lowVelocity != 0 || keys.highVelocity != kHighestVelocity)
        out << ", velocities " << keys.lowVelocity << " to " << keys.highVelocity;
    out << '\n';
}

void printProject(const Project& project, std::int64_t bytes, const std::string& file, std::ostream& out) {
    const std::string backup = backupNextTo(file);
    out << "project   " << file << '\n'
        << "size      " << bytes << " bytes, " << audioBytes(project) << " of them audio\n"
        << (backup.empty() ? ""
                           : "backup    " + backup + ", of a save that was ended before it took it away\n")
        << "audition  " << (project.auditionEnabled ? "on" : "off") << '\n'
        << "files     " << project.files.size() << '\n';
    for (std::size_t i = 0; i < project.files.size(); ++i) printFile(project.files[i], i + 1, out);
    const std::vector<PadView> pads = padsToTell(project);
    out << "pads      " << (pads.empty() ? "none" : std::to_string(pads.size())) << " in use\n";
    for (const PadView& pad : pads) printPad(pad, out);
    out << "keys      " << project.keys.size() << '\n';
    for (const KeyMapRecord& keys : project.keys) printKeys(keys, out);
}

Json fileJson(const ProjectFile& file) {
    const CWaveMem& wave = *file.wave;
    const Loop loop = loopOf(file.settings, wave.format.nSamplesPerSec);
    return {{"name", utf8FromWide(file.name)},
            {"path", utf8FromWide(file.path)},
            {"format", "float"},
            {"channels", wave.format.nChannels},
            {"rate", wave.format.nSamplesPerSec},
            {"frames", wave.frames},
            {"seconds", secondsOf(wave)},
            {"beats", loop.beats},
            {"tempo", loop.tempo ? Json(*loop.tempo) : Json()},
            {"rootNote", hasRoot(file) ? Json(rootName(file.settings.rootNote)) : Json()},
            {"grains", file.grains.size()},
            {"audioBytes", audioBytes(wave)},
            {"warnings", warningsOf(wave)}};
}

Json padJson(const PadView& view) {
    const TrackSettings& it = view.pad.settings;
    return {{"pad", view.number},
            {"grains", view.pad.grains.size()},
            {"beats", loopOf(it, 0).beats},
            {"looping", it.looping != 0},
            {"synced", it.synced != 0},
            {"oneShot", it.oneShot != 0},
            {"mute", it.mute != 0},
            {"solo", it.solo != 0},
            {"tail", it.tailOn != 0},
            {"followKey", it.followKey != 0},
            {"volume", it.volume},
            {"pan", it.pan},
            {"output", it.output},
            {"channel", it.midiChannel == kOmni ? Json() : Json(it.midiChannel + 1)},
            {"rootNote", it.rootNote == kNoRoot ? Json() : Json(rootName(it.rootNote))}};
}

Json keysJson(const KeyMapRecord& keys) {
    return {{"pad", keys.pad + 1},
            {"low", noteName(keys.lowKey)},
            {"high", noteName(keys.highKey)},
            {"root", noteName(keys.rootKey)},
            {"lowVelocity", keys.lowVelocity},
            {"highVelocity", keys.highVelocity}};
}

void printProjectJson(const Project& project, std::int64_t bytes, const std::string& file,
                      std::ostream& out) {
    Json info{{"file", file},
              {"bytes", bytes},
              {"audioBytes", audioBytes(project)},
              {"auditionEnabled", project.auditionEnabled != 0}};
    if (const std::string backup = backupNextTo(file); !backup.empty()) info["backup"] = backup;
    for (const char* list : {"files", "pads", "keys"}) info[list] = Json::array();
    for (const ProjectFile& item : project.files) info["files"].push_back(fileJson(item));
    for (const PadView& pad : padsToTell(project)) info["pads"].push_back(padJson(pad));
    for (const KeyMapRecord& keys : project.keys) info["keys"].push_back(keysJson(keys));
    out << printed(info);
}

}  // namespace

void tellProject(const std::string& file, bool json, std::ostream& out) {
    const Project project = readProjectFile(file);
    const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(pathFromUtf8(file)));
    (json ? printProjectJson : printProject)(project, bytes, file, out);
}

}  // namespace marnoth
