#pragma once

#include <string>

namespace marnoth {

/// With small letters for those of ASCII.
inline std::string inSmallLetters(std::string text) {
    for (char& letter : text)
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    return text;
}

/// Whether a name holds what a user wrote of it, in letters of either case; nothing is in every name.
inline bool isPartOfName(const std::string& part, const std::string& name) {
    return inSmallLetters(name).find(inSmallLetters(part)) != name.npos;
}

}  // namespace marnoth
