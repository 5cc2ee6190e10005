#pragma once

#include <RtMidi.h>

#include <mutex>
#include <optional>

#include "shells/desktop/midi/MidiSystem.h"

namespace marnoth {

/// Numbered names of the ports that send, as RtMidi lists them.
class RtMidiList {
public:
    explicit RtMidiList(RtMidi::Api api) : api_(api) {}

    /// By their numbers; an empty name where a port has just gone. None where RtMidi finds no sequencer.
    std::vector<std::string> names();

private:
    const RtMidi::Api api_;
    std::optional<RtMidiIn> input_;
};

/// MIDI through RtMidi: of ALSA's sequencer, or of another system that RtMidi knows.
class RtMidiSystem final : public MidiSystem {
public:
    explicit RtMidiSystem(RtMidi::Api api) : api_(api), list_(api) {}

    std::vector<std::string> ports() override;
    std::string missing() override;
    std::unique_ptr<MidiConnection> connect(const std::string& part, MidiReceiver& receiver) override;

private:
    const RtMidi::Api api_;
    std::mutex mutex_;
    RtMidiList list_;
};

}  // namespace marnoth
