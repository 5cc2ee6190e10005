#pragma once

#include <string>

#include "platform/com/Com.h"

namespace marnoth {

/// In words why the instrument didn't load a file: `result` is what the load gave, `file` its name in UTF-8.
/// Looks into the file itself, since the codes alone don't tell.
std::string whyNotLoaded(const std::string& file, HRESULT result);

/// Whether the instrument, which takes names in the system code page, gets this one whole; and in words, when
/// it doesn't.
bool isSayable(const std::string& name);
inline constexpr const char* kNotSayable =
    "its name holds characters that the system code page lacks: rename it";

/// In words why the reader doesn't open a file.
std::string whyNotOpened(const std::string& file, std::uint32_t riffError);

}  // namespace marnoth
