#ifndef _WIN32
#include <gtest/gtest.h>

#include <stdexcept>

#include "cli/CliRun.h"

namespace marnoth::test::devices_command_test {
namespace {

/// A machine with speakers, a server that doesn't run, and a keyboard.
std::vector<SoundSystem> someSystems() {
    SoundSystem jack;
    jack.name = "JACK";
    jack.missing = "No JACK server runs.";
    SoundSystem pulse;
    pulse.name = "PulseAudio";
    pulse.outputs = {{"Speakers", 48000, {44100, 48000}, true}, {"A \"loud\"\nroom", 0, {}, false}};
    pulse.midiPorts = {"Keys 20:0"};
    SoundSystem file;
    file.name = "File";
    file.takesAnyName = true;
    file.midiPorts = pulse.midiPorts;
    SoundSystem none;
    none.name = "No sound";
    none.missingMidi = "There is no sequencer.";
    return {jack, pulse, file, none};
}

CliRun devices(std::vector<std::string> options, const ListSound& list = someSystems) {
    options.insert(options.begin(), "devices");
    std::ostringstream out;
    std::ostringstream errors;
    const int status = runCommandLine(std::move(options), out, errors, {}, list);
    return {status, out.str(), errors.str()};
}

TEST(DevicesCommand, TellsWhatThereIsAndWhyTheRestIsnt) {
    const CliRun run = devices({});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out,
              "JACK: No JACK server runs.\n"
              "PulseAudio:\n"
              "  Speakers, 48000 Hz, the default\n"
              "  A \"loud\" room\n"
              "File: any, as in --audio File:take.wav\n"
              "No sound\n"
              "MIDI with PulseAudio, File:\n"
              "  Keys 20:0\n"
              "MIDI with No sound: There is no sequencer.\n");
}

TEST(DevicesCommand, SystemsThatLackTheSameStandInOneLine) {
    const CliRun run = devices({}, [] {
        std::vector<SoundSystem> systems = someSystems();
        systems[1].missing = systems[2].missing = "The module isn't installed.";
        systems[1].outputs.clear();
        return systems;
    });
    EXPECT_EQ(run.out,
              "JACK: No JACK server runs.\n"
              "PulseAudio, File: The module isn't installed.\n"
              "No sound\n"
              "MIDI with No sound: There is no sequencer.\n");
}

TEST(DevicesCommand, TellsTheSameAsJson) {
    const std::string json = devices({"--json"}).out;
    EXPECT_EQ(json.substr(0, json.find("    {\n      \"name\": \"File\"")), R"({
  "systems": [
    {
      "name": "JACK",
      "missing": "No JACK server runs.",
      "outputs": [],
      "midiPorts": [],
      "missingMidi": null
    },
    {
      "name": "PulseAudio",
      "missing": null,
      "outputs": [
        {
          "name": "Speakers",
          "default": true,
          "rate": 48000,
          "rates": [
            44100,
            48000
          ]
        },
        {
          "name": "A \"loud\"\nroom",
          "default": false,
          "rate": null,
          "rates": []
        }
      ],
      "midiPorts": [
        "Keys 20:0"
      ],
      "missingMidi": null
    },
)");
}

TEST(DevicesCommand, WithoutPortsThereIsALine) {
    SoundSystem jack;
    jack.name = "JACK";
    EXPECT_EQ(devices({}, [&] { return std::vector{jack}; }).out, "JACK\nMIDI with JACK: no ports\n");
}

TEST(DevicesCommand, WithoutSoundItIsAWrongUse) {
    const CliRun run = devices({}, {});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "marnoth: this program has no sound\n");
}

TEST(DevicesCommand, WhatTheModuleFailsOfIsTheProgramsFailure) {
    const CliRun run = devices({}, []() -> std::vector<SoundSystem> {
        throw std::runtime_error("marnoth-desktop.so isn't installed");
    });
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "marnoth: marnoth-desktop.so isn't installed\n");
}

}  // namespace
}  // namespace marnoth::test::devices_command_test
#endif
