#pragma once

#include <RtAudio.h>

#include <optional>
#include <string>
#include <vector>

#include "shells/desktop/audio/AudioSystem.h"

namespace marnoth {

/// An output, and the number that RtAudio knows it by.
struct RtDevice {
    AudioDevice device;
    unsigned number = 0;
};

/// The outputs with two channels or more. Throws nothing: what can't be looked at isn't there.
std::vector<RtDevice> rtDevices(RtAudio& audio);

/// The one of `devices` that a user names, whole or by a part; without a name the one that the system plays
/// on, else the first. Null when there is none.
const RtDevice* findDevice(const std::vector<RtDevice>& devices, const std::string& name);

}  // namespace marnoth
