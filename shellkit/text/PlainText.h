#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace marnoth {

/// Values as a line of text shows them.

/// A number with this many digits behind the point.
std::string fixed(double value, int digits);

/// The kind of samples that a format tag stands for: "PCM", "float", or the tag.
std::string formatName(std::uint16_t tag);

/// With `between` between each two.
std::string joined(const std::vector<std::string>& words, const std::string& between);
/// "A, B or C".
std::string alternatives(const std::vector<std::string>& words);

/// Text from a file for a line of a terminal or a window: what would end the line or steer the terminal
/// becomes a blank.
std::string inOneLine(std::string text);

}  // namespace marnoth
