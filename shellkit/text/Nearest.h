#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace marnoth {

/// The one of `words` that `word` was most likely meant to be, by the fewest letters that are missing, too
/// many, other ones or swapped with their neighbour; empty when none is near.
std::string nearestWord(std::string_view word, const std::vector<std::string>& words);

/// " (did you mean X?)", or nothing.
std::string nearestHint(std::string_view word, const std::vector<std::string>& words);

}  // namespace marnoth
