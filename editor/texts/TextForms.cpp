#include "editor/texts/TextForms.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "seam/Limits.h"

namespace marnoth {
namespace {

constexpr double kSilenceDecibels = -75.0;
constexpr std::string_view kSpace = " \t\n\v\f\r";
constexpr std::array<const char*, 12> kNoteNames{"C",  "C#", "D",  "D#", "E",  "F",
                                                 "F#", "G",  "G#", "A",  "A#", "B"};
/// The white keys at their semitones.
constexpr std::string_view kNoteLetters = "C~D~EF~G~A~B";

/// From the first character of a number on, which may be a minus. A plus is dropped where it is a sign.
std::string_view numberIn(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kSpace), text.size()));
    const bool plus = text.starts_with('+') && !text.starts_with("+-") && !text.starts_with("++");
    if (plus) text.remove_prefix(1);
    return text;
}

/// The power of ten of a number's first digit, more or less: enough to tell numbers that are too large for a
/// double from those that are too small for one.
double roughPower(std::string_view number) {
    const std::size_t e = std::min(number.find_first_of("eE"), number.size());
    const std::string_view mantissa = number.substr(0, e);
    const auto point = static_cast<double>(std::min(mantissa.find('.'), mantissa.size()));
    const auto first = static_cast<double>(mantissa.find_first_of("123456789"));
    return point - first + (e < number.size() ? parseInteger(number.substr(e + 1)).value_or(0) : 0);
}

std::optional<double> parseNumber(std::string_view text) {
    const std::string_view number = numberIn(text);
    double value = 0.0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (error == std::errc::invalid_argument || std::isnan(value)) return {};
    if (error == std::errc{}) return value;
    const bool large = roughPower({number.data(), end}) > 0;
    return std::copysign(large ? std::numeric_limits<double>::infinity() : 0.0,
                         number.starts_with('-') ? -1.0 : 1.0);
}

std::string decimal(double value, int decimals) {
    // The longest: a float's largest number has 39 digits.
    std::array<char, 64> text;
    const auto result =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, decimals);
    return {text.data(), result.ptr};
}

char upperCase(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

std::string volumeText(float volume) {
    return volume > 0.0f ? decimal(20.0 * std::log10(static_cast<double>(volume)), 1) : "-Inf";
}

std::optional<float> parseVolume(std::string_view text) {
    const std::optional<double> decibels = parseNumber(text);
    if (!decibels) return {};
    if (*decibels < kSilenceDecibels) return 0.0f;
    const double gain = std::pow(10.0, 0.05 * *decibels);
    return static_cast<float>(std::min<double>(gain, std::numeric_limits<float>::max()));
}

std::string panText(float pan) {
    if (pan == 0.5f) return "C";
    const double percent = std::abs(200.0 * static_cast<double>(pan) - 100.0);
    return decimal(percent, 0) + (pan < 0.5f ? "L" : "R");
}

std::optional<float> parsePan(std::string_view text) {
    const char side = text.empty() ? '\0' : upperCase(text.back());
    if (side == 'C') return 0.5f;
    std::string number{text};
    if (side == 'L' || side == 'R') number.pop_back();
    if (side == 'L') number.insert(0, "-");
    const std::optional<int> percent = parseInteger(number);
    if (!percent) return {};
    return static_cast<float>((std::clamp(*percent, -100, 100) + 100) * 0.005);
}

std::optional<int> parseInteger(std::string_view text) {
    const std::string_view number = numberIn(text);
    int value = 0;
    const std::errc error = std::from_chars(number.data(), number.data() + number.size(), value).ec;
    if (error == std::errc::invalid_argument) return {};
    if (error == std::errc{}) return value;
    return number.starts_with('-') ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
}

std::string FormatNoteName(int note, bool withOctave) {
    if (note < 0 || note > kHighestKey) return {};
    const std::string name = kNoteNames[static_cast<std::size_t>(note % 12)];
    return withOctave ? name + std::to_string(note / 12) : name;
}

bool ParseNoteName(std::string_view text, int* note, bool withOctave) {
    const std::size_t letter = text.empty() ? kNoteLetters.npos : kNoteLetters.find(upperCase(text[0]));
    if (letter == kNoteLetters.npos) return false;
    const bool sharp = text.size() > 1 && text[1] == '#';
    const int semitone = static_cast<int>(letter) + (sharp ? 1 : 0);
    if (!withOctave) {
        *note = semitone;
        return true;
    }
    const std::optional<int> octave = parseInteger(text.substr(sharp ? 2 : 1, 2));
    if (!octave) return false;
    *note = *octave < 0 || *octave > 10 ? 0 : semitone + 12 * *octave;
    return true;
}

}  // namespace marnoth
