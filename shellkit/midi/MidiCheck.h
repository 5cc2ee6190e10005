#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace marnoth {

inline constexpr std::uint8_t kMetaStatus = 0xFF;  ///< the first byte of an event that is no message

/// What is used of a standard MIDI file; the tracks point into the file's own bytes.
struct MidiChunks {
    std::uint16_t format = 0;    ///< 0 one track, 1 tracks of one piece, 2 a piece in each track
    std::uint16_t division = 0;  ///< pulses per beat; with the highest bit set, of a film frame
    std::vector<std::span<const std::uint8_t>> tracks;
};

/// Takes a file apart. Nothing unless it has the structure of a standard MIDI file: tracks that lie within
/// it, of whole events with an end, and times that fit 32 bits. The library that reads such files ends the
/// program over one that hasn't. Chunks of other kinds, and what stands behind the last chunk, are passed
/// over.
std::optional<MidiChunks> readMidiChunks(std::span<const std::uint8_t> file);

/// A file of these chunks and nothing else.
std::vector<std::uint8_t> writeMidiChunks(const MidiChunks& chunks);

}  // namespace marnoth
