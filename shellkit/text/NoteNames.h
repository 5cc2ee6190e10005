#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace marnoth {

/// Names of keys, which count from 0 for A to 11, and of MIDI notes, as the page writes them.

/// The number for what is no key.
std::string keyName(std::int32_t key);

/// Of a root note as loops bring it along: 6 is "C". The number for what is no note of theirs.
std::string rootName(std::int32_t root);

/// "A", "C#" or "Bb", in letters of either case; nothing for any other text.
std::optional<std::uint32_t> keyNamed(std::string_view name);

/// 60 is "C5"; the number for what is no note.
std::string noteName(std::int32_t note);

}  // namespace marnoth
