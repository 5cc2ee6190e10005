#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/PluginSteps.h"
#include "fuzz/ProjectSeeds.h"
#include "shellkit/MidiBytes.h"

/// make_fuzz_seeds FOLDER: writes what the fuzzers begin with, a folder for each target.
namespace marnoth::fuzz {
namespace {

namespace fs = std::filesystem;
using test::Bytes;

void makeWaves(const fs::path& folder) {
    for (const auto& [name, file] : waveSeeds()) file.write(folder / name);
}

void makeProjects(const fs::path& folder) {
    for (const auto& [name, bytes] : projectSeeds()) test::WaveFile::writeBytes(folder / name, bytes);
}

void makeVersions(const fs::path& folder) {
    int count = 0;
    for (const std::u16string_view word : {u"00000000000 ", u"-0000000001\t", u"7\r", u"2147483647\n",
                                           u"4294967296 ", u"123456789012", u"x "}) {
        Bytes bytes;
        for (const char16_t unit : word) test::append(bytes, static_cast<std::uint16_t>(unit));
        test::WaveFile::writeBytes(folder / std::to_string(++count), bytes);
    }
}

void makeMidi(const fs::path& folder) {
    using test::Bytes;
    const Bytes note{0, 0x90, 60, 100, 48, 60, 0};
    const Bytes tempo{0, 0xFF, 0x51, 3, 7, 0xA1, 0x20, 0, 0xFF, 0x58, 4, 3, 2, 24, 8};
    const Bytes exclusive{0, 0xF0, 2, 0x43, 0x10, 0, 0xF7, 2, 1, 0xF7, 0, 0xFF, 1, 1, 'x'};
    const auto file = [](std::uint16_t format, const std::vector<Bytes>& tracks) {
        Bytes bytes = test::midiHeader(format, static_cast<std::uint16_t>(tracks.size()), 96);
        for (const Bytes& track : tracks) bytes.insert(bytes.end(), track.begin(), track.end());
        return bytes;
    };
    test::WaveFile::writeBytes(folder / "one.mid", file(0, {test::midiTrack(note)}));
    test::WaveFile::writeBytes(folder / "two.mid",
                               file(1, {test::midiTrack(tempo), test::midiTrack(note, 48)}));
    test::WaveFile::writeBytes(
        folder / "exclusive.mid",
        file(0, {test::midiChunk("MTrk", test::joined({{0, 0x90, 60, 100}, exclusive, {48, 60, 0}}))}));
    Bytes form;
    for (const char* text : {"RIFF", "....", "RMID", "data", "...."}) test::append(form, std::string(text));
    const Bytes inside = file(0, {test::midiTrack(note)});
    form[16] = static_cast<std::uint8_t>(inside.size());
    form[17] = form[18] = form[19] = 0;
    test::WaveFile::writeBytes(folder / "form.rmi", test::joined({form, inside}));
}

/// The scripts of the tests, with the folder of their sounds left out.
void makeScripts(const fs::path& folder) {
    for (const auto& entry : fs::directory_iterator(fs::path(MARNOTH_SOURCE_DIR) / "tests" / "scripts")) {
        if (entry.path().extension() != ".mrs") continue;
        std::ifstream file(entry.path(), std::ios::binary);
        std::string text{std::istreambuf_iterator<char>(file), {}};
        constexpr std::string_view kSounds = "sounds/";
        for (std::size_t at = 0; (at = text.find(kSounds, at)) != text.npos;) text.erase(at, kSounds.size());
        std::ofstream(folder / entry.path().filename(), std::ios::binary) << text;
    }
}

/// What a host does with a plug-in, written as its fuzz target reads it.
class PluginStory {
public:
    template <class... Numbers>
    PluginStory& step(PluginStep step, Numbers... numbers) {
        test::append(bytes_, static_cast<std::uint8_t>(step));
        (test::append(bytes_, numbers), ...);
        return *this;
    }
    PluginStory& run(std::uint16_t frames) {
        return step(PluginStep::run, frames, std::uint8_t{0}, std::uint8_t{200});
    }
    PluginStory& midi(std::int16_t frame, std::uint8_t status, std::uint8_t data1, std::uint8_t data2) {
        return step(PluginStep::midi, frame, std::uint8_t{3}, status, data1, data2);
    }
    PluginStory& set(std::uint8_t parameter, std::uint8_t type, std::uint64_t value) {
        return step(PluginStep::set, std::int16_t{3}, parameter, type, value);
    }
    /// A position of doubles.
    PluginStory& position(double frame, double speed, double tempo) {
        step(PluginStep::object, std::int16_t{7}, storyNumber(LV2_TIME__Position), std::uint8_t{3});
        property(LV2_TIME__frame, frame);
        property(LV2_TIME__speed, speed);
        return property(LV2_TIME__beatsPerMinute, tempo);
    }
    PluginStory& restore(std::uint8_t project, std::uint8_t faults, const std::string& view = {}) {
        step(PluginStep::restore, project, faults, std::uint16_t{100}, std::uint8_t{0},
             static_cast<std::uint8_t>(view.size()));
        test::append(bytes_, view);
        return *this;
    }
    PluginStory& save(std::uint8_t files) { return step(PluginStep::save, std::uint8_t{0}, files); }
    const Bytes& bytes() const { return bytes_; }

private:
    PluginStory& property(const char* key, double value) {
        test::append(bytes_, storyNumber(key));
        test::append(bytes_, storyNumber(LV2_ATOM__Double));
        test::append(bytes_, std::uint8_t{sizeof value});
        test::append(bytes_, value);
        return *this;
    }

    Bytes bytes_{0};
};

void makePlugins(const fs::path& folder) {
    const auto write = [&](const char* name, const PluginStory& story) {
        test::WaveFile::writeBytes(folder / name, story.bytes());
    };
    PluginStory played;
    played.restore(2, 0)
        .midi(0, 0x90, 60, 100)
        .midi(20, 0xB0, 7, 50)
        .run(64)
        .midi(5, 0x80, 60, 0)
        .run(700)
        .save(0);
    write("played", played);
    PluginStory refused;
    refused.restore(1, kInFile).save(1);
    for (const std::uint8_t fault : std::initializer_list<std::uint8_t>{
             kNoVersion, kNoProject, kNewerVersion, kOddVersion, kOddProject, kInFile | kNoFile, kCut})
        refused.restore(2, fault).run(32);
    write("refused", refused.step(PluginStep::names));
    PluginStory automated;
    for (std::uint8_t parameter = 0; parameter < 8; ++parameter)
        automated.set(parameter, storyNumber(LV2_ATOM__Float), 0x3F000000);
    PluginStory moved;
    moved.restore(2, 0);
    for (const double tempo : {120.0, 60.0, 1e9, 0.0}) {
        moved.position(-100, 1, tempo).midi(9, 0x90, 60, 1).run(200);
        moved.position(1e15, 0.5, tempo).run(1000).position(5, 0, tempo).run(3);
    }
    write(
        "moved",
        moved.step(PluginStep::object, std::int16_t{0}, storyNumber(LV2_PATCH__Get), std::uint8_t{0}).run(9));
    PluginStory shown;
    shown.restore(2, 0, "pad 3\nfile 1\nzoom 80 20\nsnap 2\neditor 10 5\nbin 0 3\ngrains 3 0 3 1\nkeys\n");
    write("shown", shown.step(PluginStep::page).run(64).step(PluginStep::page));
    write("automated", automated.run(64).step(PluginStep::activate).run(1));
}

void makeAll(const fs::path& folder) {
    for (const char* target : {"wave", "project", "version", "midi", "script", "lv2"})
        fs::create_directories(folder / target);
    makeWaves(folder / "wave");
    makeVersions(folder / "version");
    makeMidi(folder / "midi");
    makeScripts(folder / "script");
    makeProjects(folder / "project");
    makePlugins(folder / "lv2");
}

}  // namespace
}  // namespace marnoth::fuzz

int main(int count, char** words) try {
    if (count != 2) {
        std::fputs("usage: make_fuzz_seeds FOLDER\n", stderr);
        return 2;
    }
    marnoth::fuzz::makeAll(words[1]);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "make_fuzz_seeds: %s\n", error.what());
    return 1;
}
