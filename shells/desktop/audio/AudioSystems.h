#pragma once

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

/// What a user names: a system by how its name begins ("null" and "none" are the one without sound), a system
/// and what it is to open behind a colon ("file:take.wav"), or a part of a device's name. Case doesn't
/// matter. Nothing when there is no such thing.
std::optional<AudioChoice> findAudio(const AudioSystems& systems, const std::string& name);

}  // namespace marnoth
