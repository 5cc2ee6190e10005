#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace marnoth::tools {

/// Where a loop may be cut, in frames from its beginning.
using Markers = std::vector<std::uint32_t>;

/// A loop of music in the making: audio, and what a sampler should know of it.
struct Loop {
    std::string title;
    std::uint32_t rate = 44100;  ///< frames per second
    std::uint32_t channels = 2;
    std::uint32_t beats = 8;
    double tempo = 120;          ///< beats per minute
    int rootNote = -1;           ///< MIDI note, -1 for none
    int divisionExponent = -1;   ///< 0 cuts whole notes, 4 sixteenths; -1 leaves it to the sampler
    Markers markers;             ///< where to cut instead
    std::vector<float> samples;  ///< interleaved

    /// A loop of silence.
    static Loop of(std::string title, std::uint32_t rate, std::uint32_t channels, std::uint32_t beats,
                   double tempo);

    std::uint32_t frames() const { return static_cast<std::uint32_t>(samples.size() / channels); }
    std::uint32_t frameAt(double beat) const;
    /// Scales the audio so that its highest sample has this size.
    void normalize(float peak);
};

/// A sound as a function of the seconds since it began.
using Voice = std::function<double(double seconds)>;

/// Adds a voice at a beat. What rings past the loop's end comes in again at its beginning. `pan` runs from 0
/// (left) to 1 (right), at equal power.
void addVoice(Loop& loop, double beat, double seconds, double pan, const Voice& voice);

}  // namespace marnoth::tools
