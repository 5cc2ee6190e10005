#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "shells/desktop/audio/AudioDriver.h"

namespace marnoth {

/// What the program is started with.
struct DesktopOptions {
    std::vector<std::string> files;  ///< UTF-8: one project, or loops that go into the Loop Bin
    std::string audio;               ///< what `findAudio` takes; empty for the best there is
    AudioWish wish;                  ///< its device goes by `audio`
    double tempo = 0;                ///< beats per minute, in place of a song's; 0 where it isn't told
    std::optional<bool>
        songTempo;  ///< whether a MIDI file plays in its own tempo; as last time where it isn't told
    std::optional<bool> repeatsSong;  ///< and over and over
    int scale = 0;         ///< pixels of the screen for one of the page; 0 by the user's resolution
    bool verbose = false;  ///< how the blocks of sound went is told at the end
};

/// The instrument in a window with sound, until the user closes it. Gives the program's exit status; what
/// can't be had is said on `errors`.
int runDesktop(const DesktopOptions& options, std::ostream& errors);

}  // namespace marnoth
