#pragma once

#include <concepts>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>

#include "platform/com/Com.h"
#include "shellkit/script/ScriptWords.h"

namespace marnoth {

/// Numbers as scripts write them and transcripts print them. Independent of any locale.

/// An integer in decimal, or in hexadecimal with `0x`, after an optional `-`, within `lowest` to `highest`.
/// Throws `ScriptError`, which calls the number by `name`.
std::int64_t readInteger(std::string_view word, const char* name, std::int64_t lowest, std::int64_t highest);

/// A finite decimal number with an optional exponent. Throws `ScriptError`, which calls the number by `name`.
double readReal(std::string_view word, const char* name);
/// The same for a number that is kept in 32 bits.
float readFloat(std::string_view word, const char* name);

/// An integer that the bits of its type can hold, read as signed or as unsigned: -1 and 0xFFFFFFFF are the
/// same 32 bits, whichever of the two an operation declares.
template <std::integral T>
requires(sizeof(T) < 8 || std::signed_integral<T>) T readNumber(std::string_view word, const char* name) {
    using Lowest = std::numeric_limits<std::make_signed_t<T>>;
    using Highest = std::numeric_limits<std::conditional_t<sizeof(T) < 8, std::make_unsigned_t<T>, T>>;
    return static_cast<T>(readInteger(word, name, Lowest::min(), Highest::max()));
}

/// As `printf` with `%.9g`.
std::string printReal(double value);
/// Eight hexadecimal digits in lower case.
std::string printResult(HRESULT result);

}  // namespace marnoth
