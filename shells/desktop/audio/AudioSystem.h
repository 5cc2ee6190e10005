#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "shells/desktop/audio/AudioDriver.h"

namespace marnoth {

/// An output as its system lists it.
struct AudioDevice {
    std::string name;        ///< as the system shows it to users, UTF-8
    std::uint32_t rate = 0;  ///< what it runs at or prefers, frames per second; 0 where that isn't known
    std::vector<std::uint32_t> rates;  ///< what it can be opened at, ascending; empty where that isn't told
    bool isDefault = false;            ///< what the system plays on when nobody says otherwise
};

/// A way to be heard: JACK, PulseAudio, ALSA, a file, nothing. What it lists is looked up anew by each call,
/// for devices come and go. Each call may take its time; any one
/// thread at a time.
class AudioSystem {
public:
    virtual ~AudioSystem() = default;

    /// As users name it: "JACK", "PulseAudio", "ALSA", "No sound".
    virtual std::string name() const = 0;
    /// Opens nothing but what is named: no choice of its own, and none of a menu's.
    virtual bool needsDevice() const { return false; }
    /// Its outputs; none where it isn't there at all.
    virtual std::vector<AudioDevice> devices() = 0;
    /// Why it isn't there, a sentence for the user; empty where it is.
    virtual std::string missing() { return {}; }
    /// The names of the ports that send MIDI, UTF-8.
    virtual std::vector<std::string> midiPorts() = 0;
    /// Why there can be no such ports, a sentence for the user; empty where there can.
    virtual std::string missingMidi() { return {}; }
    /// `client` outlives what is opened. Throws `std::runtime_error`, with a sentence for the user, when it
    /// can't be had: no server, no such device, a device that another program holds, a rate that it hasn't
    /// got.
    virtual std::unique_ptr<AudioDriver> open(const AudioWish& wish, AudioClient& client) = 0;
};

}  // namespace marnoth
