#pragma once

#include <cstdint>
#include <span>

namespace marnoth {

/// Whether `file` has the structure of a standard MIDI file: chunks that lie within it, tracks of whole
/// events with an end, times that fit 32 bits. The library that reads such files ends the program over one
/// that hasn't.
bool isMidiFile(std::span<const std::uint8_t> file);

}  // namespace marnoth
