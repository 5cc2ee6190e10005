#include "shellkit/script/ScriptNumbers.h"

#include <array>
#include <charconv>
#include <cmath>

namespace marnoth {

namespace {

constexpr int kSignificantDigits = 9;
constexpr int kResultDigits = 8;

[[noreturn]] void fail(std::string_view word, const char* name, const std::string& reason) {
    constexpr std::size_t kMostShown = 40;
    const std::string shown(word.substr(0, kMostShown));
    throw ScriptError(std::string(name) + ": \"" + shown + "\" " + reason);
}

/// The digits of `word` as a magnitude; false when they are none or too large.
std::errc readMagnitude(std::string_view digits, int base, std::uint64_t& magnitude) {
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, magnitude, base);
    if (error == std::errc::result_out_of_range) return error;
    return stop == end && error == std::errc{} ? std::errc{} : std::errc::invalid_argument;
}

}  // namespace

std::int64_t readInteger(std::string_view word, const char* name, std::int64_t lowest, std::int64_t highest) {
    std::string_view digits = word;
    const bool negative = digits.starts_with('-');
    if (negative) digits.remove_prefix(1);
    const bool hexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
    if (hexadecimal) digits.remove_prefix(2);

    std::uint64_t magnitude = 0;
    const std::errc error = readMagnitude(digits, hexadecimal ? 16 : 10, magnitude);
    if (error == std::errc::invalid_argument) fail(word, name, "isn't an integer");
    constexpr std::uint64_t kMostPositive = std::numeric_limits<std::int64_t>::max();
    const bool fits = error == std::errc{} && magnitude <= kMostPositive + (negative ? 1 : 0);
    const auto value = static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude);
    if (!fits || value < lowest || value > highest)
        fail(word, name, "isn't within " + std::to_string(lowest) + " to " + std::to_string(highest));
    return value;
}

double readReal(std::string_view word, const char* name) {
    double value = 0;
    const char* end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, value);
    if (error == std::errc::result_out_of_range) fail(word, name, "is too large or too small");
    // Words like "inf" and "nan" are numbers to the library, but not to a script.
    if (error != std::errc{} || stop != end || !std::isfinite(value)) fail(word, name, "isn't a number");
    return value;
}

float readFloat(std::string_view word, const char* name) {
    const double value = readReal(word, name);
    if (std::abs(value) > std::numeric_limits<float>::max()) fail(word, name, "is too large");
    return static_cast<float>(value);
}

std::string printReal(double value) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general,
                                   kSignificantDigits);
    return {text.data(), end.ptr};
}

std::string printResult(HRESULT result) {
    std::array<char, kResultDigits> text{};
    const auto code = static_cast<std::uint32_t>(result);
    const auto end = std::to_chars(text.data(), text.data() + text.size(), code, 16);
    const std::string digits(text.data(), end.ptr);
    return std::string(kResultDigits - digits.size(), '0') + digits;
}

}  // namespace marnoth
