#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace marnoth {

/// The texts of values, and values of texts. What can't be read gives nothing; what follows a number is
/// ignored.

/// "-Inf" for 0, else decibels with one decimal.
std::string volumeText(float volume);
/// Decibels; below -75 silence.
std::optional<float> parseVolume(std::string_view text);
/// "C", or percent with "L" or "R".
std::string panText(float pan);
std::optional<float> parsePan(std::string_view text);
std::optional<int> parseInteger(std::string_view text);
/// "C5" for 60 with the octave, else "C". Nothing above 127.
std::string FormatNoteName(int note, bool withOctave);
/// Not held to 127. False, with `note` left alone, when the first character names no note.
bool ParseNoteName(std::string_view text, int* note, bool withOctave);

}  // namespace marnoth
