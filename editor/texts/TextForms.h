#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace marnoth {

/// The texts of values, and values of texts, the same in every language of the system. White space before a
/// number and a sign are read, what follows it is ignored; what can't be read gives nothing. Values of texts
/// aren't held to ranges, but for the pan's.

/// "-Inf" for 0 and below, else decibels with one decimal.
std::string volumeText(float volume);
/// Of decibels; below -75 silence.
std::optional<float> parseVolume(std::string_view text);
/// "C", or percent with "L" or "R". `pan` is 0 (left) to 1 (right).
std::string panText(float pan);
/// Of -100 to 100, or of 0 to 100 with a letter behind. 0 to 1.
std::optional<float> parsePan(std::string_view text);
/// A number that no int holds is the nearest that one does.
std::optional<int> parseInteger(std::string_view text);
/// "C5" for 60 with the octave, else "C". Nothing below 0 and above 127.
std::string FormatNoteName(int note, bool withOctave);
/// Not held to 127, but 0 for an octave outside 0 to 10. False, with `note` left alone, when the first
/// character names no note or when an octave is wanted and none can be read.
bool ParseNoteName(std::string_view text, int* note, bool withOctave);

}  // namespace marnoth
