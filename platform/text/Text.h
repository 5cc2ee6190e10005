#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace marnoth {

/// Text between the three forms that the system meets: wide characters (interfaces and file names), the
/// system's code page (names in files and projects) and UTF-8 (our own terminals and scripts).
///
/// The system's code page is the process's on Windows, where that of our own programs is UTF-8, and UTF-8
/// elsewhere. Nothing here fails on hostile text: what can't be converted becomes a replacement character.
/// Wide text is UTF-16 or UTF-32 by the width of `wchar_t`; a pair of surrogates counts as one character in
/// both.

/// Code page to wide. Where the code page is UTF-8, text that isn't UTF-8 is read as Windows-1252 as a whole:
/// files from elsewhere have such names.
std::wstring wideFromSystem(std::string_view text);

/// Wide to code page. What the code page lacks becomes its default character, '?' as a rule.
std::string systemFromWide(std::wstring_view text);

/// Wide to code page in at most `maxBytes` bytes, without any terminator: cuts behind the last character that
/// fits.
std::string systemFromWide(std::wstring_view text, std::size_t maxBytes);

/// The beginning of `text`, which is in the code page, that fits in `maxBytes` without splitting a character.
std::string_view cutSystem(std::string_view text, std::size_t maxBytes);

/// Wide to at most `maxBytes` bytes that `wideFromStored` reads as the same text, cut behind the last
/// character that fits: in the code page, or in UTF-8 where the code page would lose something.
std::string storedFromWide(std::wstring_view text, std::size_t maxBytes);

/// Text in a file that may come from another system: valid UTF-8 is taken as UTF-8, anything else in the code
/// page.
std::wstring wideFromStored(std::string_view text);

/// UTF-8 to wide. A byte that isn't part of a character becomes U+FFFD.
std::wstring wideFromUtf8(std::string_view text);

/// Takes the first character off `text`, which is UTF-8 and not empty. A byte that isn't part of a character
/// goes alone, as U+FFFD.
char32_t takeUtf8(std::string_view& text);

/// Wide to UTF-8. A lone surrogate and anything above U+10FFFF become U+FFFD.
std::string utf8FromWide(std::wstring_view text);

/// True if `text` is UTF-8 all through: no overlong forms, no surrogates, nothing above U+10FFFF.
bool isUtf8(std::string_view text);

/// The name of a file as the streams of the standard library open it.
std::filesystem::path pathFromWide(std::wstring_view name);
std::wstring wideFromPath(const std::filesystem::path& path);

}  // namespace marnoth
