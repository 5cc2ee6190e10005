#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace marnoth {

inline constexpr std::uint8_t kMetaStatus = 0xFF;  ///< the first byte of an event that is no message
// Kinds of such events that are played.
inline constexpr std::uint8_t kTempoMeta = 0x51;
inline constexpr std::uint8_t kSignatureMeta = 0x58;

/// What is used of a standard MIDI file.
struct MidiChunks {
    std::uint16_t format = 0;    ///< 0 one track, 1 tracks of one piece, 2 a piece in each track
    std::uint16_t division = 0;  ///< pulses per beat; with the highest bit set, of a film frame
    /// Each of whole events that carry their own status, and an end. Of events that play no part nothing is
    /// left but their times.
    std::vector<std::vector<std::uint8_t>> tracks;
};

/// Takes a file apart, and puts right what many files have that were never quite sound: tracks without an
/// end, and a running status behind a meta event or a system-exclusive one. System-exclusive messages may
/// come in several events. The file may stand in a RIFF form ("RMID"). Chunks of other kinds, and what stands
/// behind the last chunk, are passed over.
///
/// Nothing when a track doesn't lie within the file, or isn't made of whole events, or its times don't fit 32
/// bits. The library that reads such files stumbles over all of these, and ends the program over some.
std::optional<MidiChunks> readMidiChunks(std::span<const std::uint8_t> file);

/// A file of these chunks and nothing else.
std::vector<std::uint8_t> writeMidiChunks(const MidiChunks& chunks);

}  // namespace marnoth
