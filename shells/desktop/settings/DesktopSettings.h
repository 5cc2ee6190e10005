#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace marnoth {

/// Whether the transport is the program's own, or JACK's, of which any program can be the one that says
/// tempo, bars and beats.
enum class TransportRole {
    own,
    follows,  ///< moves with JACK's, and moves it
    leads,    ///< and says its tempo, bars and beats
};

/// What the program keeps from one start to the next. Plain values; texts are UTF-8.
struct DesktopSettings {
    static constexpr std::uint32_t kLowestRate = 1000;
    static constexpr std::uint32_t kHighestRate = 768000;
    static constexpr std::int32_t kMostFrames = 1 << 20;
    static constexpr int kLargestScale = 8;
    static constexpr int kMostLoopBars = 999;
    static constexpr float kHighestLevel = 4.0f;
    static constexpr std::size_t kLongestName = 1000;  ///< bytes
    static constexpr std::size_t kMostRecent = 8;

    std::string audio;        ///< what `findAudio` takes; empty for the best that there is
    std::string midiPort;     ///< a part of the name of what sends notes; empty for all
    std::uint32_t rate = 0;   ///< frames per second; 0 for the device's own
    std::int32_t frames = 0;  ///< of a block; 0 for the device's own
    int scale = 0;            ///< pixels of the screen for one of the page; 0 by the screen's resolution
    TransportRole transport = TransportRole::own;
    bool metronome = false;
    float level = 1.0f;                    ///< of the mix, a factor
    int loopBars = 4;                      ///< that the loop has when it is switched on
    bool songTempo = true;                 ///< a MIDI file plays in its own tempo
    bool songRepeats = false;              ///< and over and over
    std::vector<std::string> recent = {};  ///< projects and MIDI files, full paths, the last one first

    std::string loopFolder = {};     ///< where dialogs for loops begin, a full path; empty for the usual
    std::string projectFolder = {};  ///< the same for projects and MIDI files

    friend bool operator==(const DesktopSettings&, const DesktopSettings&) = default;
};

/// The same, with the usual value in place of each that can't be: out of range, no number, no text.
DesktopSettings usable(DesktopSettings settings);

}  // namespace marnoth
