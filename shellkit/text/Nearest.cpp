#include "shellkit/text/Nearest.h"

#include <algorithm>

namespace marnoth {

namespace {

/// Of what is hostile no more is looked at.
constexpr std::size_t kLongestWord = 64;

/// Edits from one word to the other, a swap of neighbours being one.
std::size_t distanceOf(std::string_view from, std::string_view to) {
    const std::size_t width = to.size() + 1;
    std::vector<std::size_t> table((from.size() + 1) * width);
    const auto at = [&](std::size_t i, std::size_t k) -> std::size_t& { return table[i * width + k]; };
    for (std::size_t i = 0; i <= from.size(); ++i) at(i, 0) = i;
    for (std::size_t k = 0; k <= to.size(); ++k) at(0, k) = k;
    for (std::size_t i = 1; i <= from.size(); ++i)
        for (std::size_t k = 1; k <= to.size(); ++k) {
            const std::size_t other = from[i - 1] == to[k - 1] ? 0 : 1;
            at(i, k) = std::min({at(i - 1, k) + 1, at(i, k - 1) + 1, at(i - 1, k - 1) + other});
            const bool swapped = i > 1 && k > 1 && from[i - 1] == to[k - 2] && from[i - 2] == to[k - 1];
            if (swapped) at(i, k) = std::min(at(i, k), at(i - 2, k - 2) + 1);
        }
    return table.back();
}

/// One letter in three may be wrong, or what is missing behind the beginning of a word.
bool isNear(std::string_view word, std::string_view candidate, std::size_t distance) {
    const bool isBeginning = word.size() >= 2 && candidate.starts_with(word);
    return isBeginning || distance <= std::max<std::size_t>(1, candidate.size() / 3);
}

}  // namespace

std::string nearestWord(std::string_view word, const std::vector<std::string>& words) {
    if (word.size() > kLongestWord) return {};
    std::string nearest;
    std::size_t least = kLongestWord;
    for (const std::string& candidate : words) {
        const std::size_t distance = distanceOf(word, candidate);
        if (distance >= least || !isNear(word, candidate, distance)) continue;
        nearest = candidate;
        least = distance;
    }
    return nearest;
}

std::string nearestHint(std::string_view word, const std::vector<std::string>& words) {
    const std::string nearest = nearestWord(word, words);
    return nearest.empty() ? nearest : " (did you mean " + nearest + "?)";
}

}  // namespace marnoth
