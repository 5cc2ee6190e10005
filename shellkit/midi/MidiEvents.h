#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <variant>
#include <vector>

namespace marnoth {

struct MidiNote {
    std::uint8_t channel = 0;   ///< 0 to 15
    std::uint8_t key = 0;       ///< 0 to 127
    std::uint8_t velocity = 0;  ///< 1 to 127; 0 where the note ends
};

struct MidiTempo {
    std::uint32_t microsecondsPerBeat = 0;  ///< 24 bits; 0 in files that make no sense
};

struct MidiSignature {
    std::uint8_t count = 4;         ///< of units in a bar
    std::uint8_t unitExponent = 2;  ///< a unit is a whole note halved so often
};

/// What stands at one place of a standard MIDI file; nothing where that plays no part.
struct MidiEvent {
    std::int64_t pulses = 0;  ///< from the beginning, at most 2^31 - 1
    std::variant<std::monostate, MidiNote, MidiTempo, MidiSignature> what;
};

/// What is used of a standard MIDI file.
struct MidiEvents {
    std::uint16_t format = 0;    ///< 0 one track, 1 tracks of one piece, 2 a piece in each track
    std::uint16_t division = 0;  ///< pulses per beat; with the highest bit set, of a film frame
    /// Of all tracks, in the order of their times. Those of one time stand as in the file, the first track's
    /// first. Each track's end is among them.
    std::vector<MidiEvent> events;
};

/// Reads a file, and takes what many have that were never quite sound: tracks without an end, and a running
/// status behind a meta event or a system-exclusive one. System-exclusive messages may come in several
/// events. The file may stand in a RIFF form ("RMID"). Chunks of other kinds, and what stands behind the last
/// chunk, are passed over.
///
/// Nothing when there is no track, or one doesn't lie within the file, isn't made of whole events, or lasts
/// beyond 2^31 - 1 pulses.
std::optional<MidiEvents> readMidiEvents(std::span<const std::uint8_t> file);

}  // namespace marnoth
