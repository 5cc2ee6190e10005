#pragma once

#include <memory>

#include "shells/desktop/audio/AudioSystem.h"
#include "shells/desktop/midi/MidiSystem.h"

namespace marnoth {

/// An audio system that brings no MIDI along, with that of another system.
class SystemWithMidi final : public AudioSystem {
public:
    SystemWithMidi(std::shared_ptr<AudioSystem> audio, std::shared_ptr<MidiSystem> midi);

    std::string name() const override { return audio_->name(); }
    bool needsDevice() const override { return audio_->needsDevice(); }
    std::vector<AudioDevice> devices() override { return audio_->devices(); }
    std::string missing() override { return audio_->missing(); }
    std::vector<std::string> midiPorts() override { return midi_->ports(); }
    std::string missingMidi() override { return midi_->missing(); }
    std::unique_ptr<AudioDriver> open(const AudioWish& wish, AudioClient& client) override;

private:
    const std::shared_ptr<AudioSystem> audio_;
    const std::shared_ptr<MidiSystem> midi_;
};

}  // namespace marnoth
