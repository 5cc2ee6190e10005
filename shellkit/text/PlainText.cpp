#include "shellkit/text/PlainText.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "platform/com/Com.h"

namespace marnoth {

std::string fixed(double value, int digits) {
    std::array<char, 512> text{};
    std::snprintf(text.data(), text.size(), "%.*f", digits, value);
    return text.data();
}

std::string formatName(std::uint16_t tag) {
    switch (tag) {
        case WAVE_FORMAT_PCM:
            return "PCM";
        case WAVE_FORMAT_IEEE_FLOAT:
            return "float";
        default:
            return "tag " + std::to_string(tag);
    }
}

std::string joined(const std::vector<std::string>& words, const std::string& between) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) text += (i == 0 ? "" : between) + words[i];
    return text;
}

std::string alternatives(const std::vector<std::string>& words) {
    if (words.size() < 2) return joined(words, "");
    return joined({words.begin(), words.end() - 1}, ", ") + " or " + words.back();
}

std::string inOneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; }, ' ');
    return text;
}

}  // namespace marnoth
