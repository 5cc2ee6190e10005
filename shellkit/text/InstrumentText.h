#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace marnoth {

/// Text between the shells, where all of it is UTF-8, and what lies beneath: names of files, and the
/// instrument's narrow texts, which are in the system code page.

std::filesystem::path pathFromUtf8(std::string_view text);
std::string utf8FromPath(const std::filesystem::path& path);

/// Text for the instrument's narrow arguments, and back.
std::string toInstrument(std::string_view utf8);
std::string fromInstrument(std::string_view systemText);

}  // namespace marnoth
