#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "shells/cli/Streams.h"

namespace marnoth {

/// A way to be heard, as this machine has it now. Names are in UTF-8.
struct SoundSystem {
    struct Output {
        std::string name;
        std::uint32_t rate = 0;            ///< its own, frames per second; 0 where that isn't known
        std::vector<std::uint32_t> rates;  ///< that it can have, ascending; empty where that isn't told
        bool isDefault = false;
    };

    std::string name;
    std::string missing;        ///< why it isn't there, a sentence; empty where it is
    bool takesAnyName = false;  ///< in place of outputs
    std::vector<Output> outputs;
    std::vector<std::string> midiPorts;
    std::string missingMidi;  ///< why there can be no such ports, a sentence; empty where there can
};

/// Looks at all of them, best first.
using ListSound = std::function<std::vector<SoundSystem>()>;

/// What `marnoth devices` was asked for.
struct DevicesOptions {
    bool json = false;
};

/// Prints what sound and notes can go through.
void runDevices(const DevicesOptions& options, const ListSound& list, const Streams& streams);

}  // namespace marnoth
