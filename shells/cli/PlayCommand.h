#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "shells/cli/Streams.h"

namespace marnoth {

/// What is played in a window, and through what. Names are in UTF-8.
struct PlayOptions {
    std::vector<std::string> files;  ///< a project, loops for the pads from 1 on, a MIDI file
    std::string audio;       ///< a system, "file:OUT.wav", part of an output's name; empty for the best
    std::string midi;        ///< part of a port's name; empty for all
    std::uint32_t rate = 0;  ///< frames per second; 0 for the device's own
    std::int32_t block = 0;  ///< frames; 0 for the device's own
    std::string
        songTempo;  ///< "yes" or "no": whether a MIDI file plays in its own tempo; empty for as last time
    std::string repeat;    ///< the same: whether it begins anew where it ends
    double tempo = 0;      ///< beats per minute; 0 where it isn't told
    int scale = 0;         ///< size of a pixel; 0 by the screen's resolution
    bool verbose = false;  ///< how the blocks of sound went is told at the end
};

/// Opens the window and gives the exit status when it is closed. Throws as commands do.
using PlayCommand = std::function<int(const PlayOptions&, const Streams&)>;

}  // namespace marnoth
