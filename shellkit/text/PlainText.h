#pragma once

#include <string>

#include "platform/com/Com.h"

namespace marnoth {

/// Values as a line of text shows them.

/// A number with this many digits behind the point.
std::string fixed(double value, int digits);

/// A format's kind: "PCM", "float", or its tag.
std::string formatName(const WAVEFORMATEX& format);

/// Text from a file for a line of a terminal or a window: what would end the line or steer the terminal
/// becomes a blank.
std::string inOneLine(std::string text);

}  // namespace marnoth
