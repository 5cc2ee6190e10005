#pragma once

#include <memory>
#include <string>

#include "shells/desktop/audio/AudioSystems.h"
#include "shells/desktop/midi/MidiSystem.h"

namespace marnoth {

/// What a module of its own brings, for its libraries link those of several audio systems, and the program
/// runs without them.
struct RtSystems {
    AudioSystems audio;                ///< PulseAudio and ALSA, without MIDI
    std::shared_ptr<MidiSystem> midi;  ///< ALSA's
};

/// The one thing that the module gives out: a function that fills in what it brings.
using MakeRtSystems = void (*)(RtSystems&);
inline constexpr const char* kMakeRtSystems = "marnothRtSystems";

/// Loads the module, which lies beside the code that asks. Where it or a library of its is missing, the audio
/// systems and MIDI say so.
RtSystems loadRtSystems();

}  // namespace marnoth
