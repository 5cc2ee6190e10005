#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace marnoth {

/// A line of a script that can't be understood; `what()` is the reason, without the place.
struct ScriptError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A line of a script may be that long; no command needs more.
inline constexpr std::size_t kMostLineBytes = 0x10000;

/// The words of one line: separated by blanks, up to a `#` outside of quotes. A word in double quotes may
/// hold blanks, and `\"` and `\\` for a quote and a backslash; elsewhere a backslash is a character like any
/// other. Throws `ScriptError`.
std::vector<std::string> splitWords(std::string_view line);

/// The words as the transcript shows them: joined by single blanks, in quotes where a word holds a blank.
std::string joinWords(const std::vector<std::string>& words);

/// `text` in double quotes, its quotes and backslashes escaped.
std::string inQuotes(std::string_view text);

}  // namespace marnoth
