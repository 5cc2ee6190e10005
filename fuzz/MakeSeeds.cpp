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

#include "fuzz/SeedFiles.h"
#include "hostkit/MakeObject.h"
#include "hostkit/MemoryStream.h"
#include "shellkit/MidiBytes.h"
#include "support/EngineHost.h"

/// make_fuzz_seeds FOLDER: writes what the fuzzers begin with, a folder for each target.
namespace marnoth::fuzz {
namespace {

namespace fs = std::filesystem;
using test::Bytes;

void makeWaves(const fs::path& folder) {
    for (const auto& [name, file] : waveSeeds()) file.write(folder / name);
}

Bytes saved(test::EngineHost& host) {
    RefPtr<MemoryStream> stream = makeObject<MemoryStream>();
    if (host.engine.SaveState(stream.get()) != S_OK) throw std::runtime_error("the project can't be saved");
    return stream->takeBytes();
}

void load(test::EngineHost& host, std::int32_t pad, const test::WaveFile& file) {
    const test::TempPath path = file.writeTemp();
    std::int32_t bin = -1;
    std::uint32_t status = 0;
    if (FAILED(host.engine.LoadFileToPad(pad, "loop", path.c_str(), &bin, &status)))
        throw std::runtime_error("a seed's loop can't be loaded");
}

void makeProjects(const fs::path& folder) {
    using test::WaveFile;
    WaveFile::writeBytes(folder / "empty.mrn", saved(*std::make_unique<test::EngineHost>()));
    test::EngineHost one(11025, 1);
    load(one, 0, WaveFile().rate(11025).frames(32, tone).acid({.beats = 1}).strc(3));
    WaveFile::writeBytes(folder / "one.mrn", saved(one));
    test::EngineHost two(22050, 2);
    load(two, 0, WaveFile().rate(22050).channels(2).frames(64, tone).acid({.beats = 1}));
    load(two, 3, WaveFile().rate(22050).frames(40, tone).acid({.flags = 1}));
    two.engine.AddGrain(0, 2, 3, 1000000);
    two.engine.SetGrainTranspose(0, 1, 7);
    two.engine.SetGrainPan(0, 1, 0.25f);
    two.engine.SetPadSolo(3, 1);
    two.engine.SetPadChannel(3, 4);
    WaveFile::writeBytes(folder / "two.mrn", saved(two));
    Bytes wrapped(24, 0x20);
    const Bytes form = saved(one);
    wrapped.insert(wrapped.end(), form.begin(), form.end());
    WaveFile::writeBytes(folder / "wrapped.mrn", wrapped);
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

void makeAll(const fs::path& folder) {
    for (const char* target : {"wave", "project", "version", "midi", "script"})
        fs::create_directories(folder / target);
    makeWaves(folder / "wave");
    makeVersions(folder / "version");
    makeMidi(folder / "midi");
    makeScripts(folder / "script");
    makeProjects(folder / "project");
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
