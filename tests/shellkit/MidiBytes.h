#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/WaveFile.h"

namespace marnoth::test {

/// Standard MIDI files by hand, in parts.

inline void appendBigEndian(Bytes& bytes, std::uint32_t value, int count) {
    for (int shift = 8 * (count - 1); shift >= 0; shift -= 8)
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}

inline Bytes midiHeader(std::uint16_t format, std::uint16_t tracks, std::uint16_t pulsesPerBeat) {
    Bytes file;
    append(file, std::string("MThd"));
    appendBigEndian(file, 6, 4);
    appendBigEndian(file, format, 2);
    appendBigEndian(file, tracks, 2);
    appendBigEndian(file, pulsesPerBeat, 2);
    return file;
}

inline Bytes midiChunk(const std::string& id, const Bytes& body) {
    Bytes bytes;
    append(bytes, id);
    appendBigEndian(bytes, static_cast<std::uint32_t>(body.size()), 4);
    bytes.insert(bytes.end(), body.begin(), body.end());
    return bytes;
}

/// A track of these events, which are bytes with delta times, and its end.
inline Bytes midiTrack(Bytes events, std::uint8_t endDelta = 0) {
    events.insert(events.end(), {endDelta, 0xFF, 0x2F, 0});
    return midiChunk("MTrk", events);
}

inline Bytes joined(const std::vector<Bytes>& parts) {
    Bytes file;
    for (const Bytes& part : parts) file.insert(file.end(), part.begin(), part.end());
    return file;
}

/// A standard MIDI file of one track.
inline Bytes midi(std::uint16_t pulsesPerBeat, const Bytes& events, std::uint8_t endDelta = 0) {
    return joined({midiHeader(0, 1, pulsesPerBeat), midiTrack(events, endDelta)});
}

}  // namespace marnoth::test
