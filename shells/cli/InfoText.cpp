#include "shells/cli/InfoText.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace marnoth {

namespace {

constexpr int kSemitones = 12;
/// Names of the semitones from A on.
constexpr std::array<const char*, kSemitones> kKeyNames{"A",  "A#", "B", "C",  "C#", "D",
                                                        "D#", "E",  "F", "F#", "G",  "G#"};
constexpr std::int32_t kHighestNote = 127;

}  // namespace

std::string fixed(double value, int digits) {
    std::array<char, 512> text{};
    std::snprintf(text.data(), text.size(), "%.*f", digits, value);
    return text.data();
}

std::string formatName(const WAVEFORMATEX& format) {
    switch (format.wFormatTag) {
        case 1:
            return "PCM";
        case 3:
            return "float";
        default:
            return "tag " + std::to_string(format.wFormatTag);
    }
}

std::string keyName(std::int32_t key) {
    return key >= 0 && key < kSemitones ? kKeyNames[static_cast<std::size_t>(key)] : std::to_string(key);
}

std::string noteName(std::int32_t note) {
    if (note < 0 || note > kHighestNote) return std::to_string(note);
    // Note 0 is C0, three semitones above an A.
    return keyName((note + 3) % kSemitones) + std::to_string(note / kSemitones);
}

std::string inOneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; }, ' ');
    return text;
}

std::string printed(const Json& json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace marnoth
