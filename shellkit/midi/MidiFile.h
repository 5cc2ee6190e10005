#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "seam/Pzi.h"
#include "shellkit/midi/TempoTrack.h"

namespace marnoth {

/// What a standard MIDI file plays, on the instrument's scale of 960 ticks to the beat.
struct MidiPart {
    std::vector<SynthEvent> notes;  ///< in the order of their times, each with its duration, at least 1 tick
    TempoTrack tempo;               ///< 120 where the file doesn't say
    std::int32_t endTicks = 0;      ///< the end of the file, rounded up to a whole bar of its time signature
};

/// Reads a file. Throws `FileFailure` with the reason when it isn't a standard MIDI file that counts in
/// beats, or plays no note. Notes that the file leaves open end with it.
MidiPart readMidi(const std::string& file);
/// The same of the bytes of a file, which is called `file` in the reason.
MidiPart readMidi(std::span<const std::uint8_t> bytes, const std::string& file);

}  // namespace marnoth
