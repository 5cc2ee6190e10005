#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "shells/desktop/audio/AudioSystem.h"

namespace marnoth {

/// Shared with the threads that open them.
using AudioSystems = std::vector<std::shared_ptr<AudioSystem>>;

/// The ways of this machine to be heard, best first; the last is none at all, which can always be had.
AudioSystems audioSystems();

/// The same, where who calls a system waits until nobody else does.
AudioSystems oneCallAtATime(AudioSystems systems);

/// A system, and what is opened with it.
struct AudioChoice {
    std::shared_ptr<AudioSystem> system;
    std::string device;  ///< empty for its own choice
};

/// For the devices and ports of a system.
inline constexpr std::chrono::milliseconds kAudioListPatience{2000};

/// What a user names: a system by how its name begins ("null" and "none" are the one without sound), a system
/// and what it is to open behind a colon ("file:take.wav"), or a part of a device's name. Case doesn't
/// matter. Nothing when there is no such thing. Throws `std::runtime_error`, with a sentence for the user,
/// when nobody knows, for a system doesn't tell its devices within `patience`: it may be among them.
std::optional<AudioChoice> findAudio(const AudioSystems& systems, const std::string& name,
                                     std::chrono::milliseconds patience = kAudioListPatience);

}  // namespace marnoth
