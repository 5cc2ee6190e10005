#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "platform/com/Com.h"
#include "seam/MusicalTime.h"

namespace marnoth {

/// What the tellers of `marnoth info` have in common.

using Json = nlohmann::ordered_json;

/// A number with this many digits behind the point.
std::string fixed(double value, int digits);

/// A format's kind: "PCM", "float", or its tag.
std::string formatName(const WAVEFORMATEX& format);

/// Name of a key that counts from 0 for A to 11; the number for any other.
std::string keyName(std::int32_t key);

/// Name of a MIDI note, 60 being "C5" as on the page; the number for what is none.
std::string noteName(std::int32_t note);

/// Text from a file for a terminal: what would end the line or steer the terminal becomes a blank.
std::string inOneLine(std::string text);

/// The JSON as text. What isn't UTF-8 shows as replacement characters.
std::string printed(const Json& json);

}  // namespace marnoth
