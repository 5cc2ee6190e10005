#pragma once

#include <concepts>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "platform/Com.h"
#include "shells/cli/ScriptWords.h"

namespace marnoth {

/// Numbers as scripts write them and transcripts print them. Independent of any locale.

/// An integer in decimal, or in hexadecimal with `0x`, after an optional `-`, within `lowest` to `highest`.
/// Throws `ScriptError`, which calls the number by `name`.
std::int64_t readInteger(std::string_view word, const char* name, std::int64_t lowest, std::int64_t highest);

/// A finite decimal number with an optional exponent. Throws `ScriptError`, which calls the number by `name`.
double readReal(std::string_view word, const char* name);
/// The same for a number that is kept in 32 bits.
float readFloat(std::string_view word, const char* name);

/// An integer within the range of its type.
template <std::integral T>
requires(sizeof(T) < 8 || std::signed_integral<T>) T readNumber(std::string_view word, const char* name) {
    return static_cast<T>(
        readInteger(word, name, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

/// As `printf` with `%.9g`.
std::string printReal(double value);
/// Eight hexadecimal digits in lower case.
std::string printResult(HRESULT result);

}  // namespace marnoth
