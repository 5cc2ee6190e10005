#pragma once

#include <string>

namespace marnoth {

/// A path as whoever knows files by names in the system's code page can take it: itself where the code page
/// has all of its characters, else its short form, or the short form of its folder with its name. Itself
/// again where there is none.
std::wstring pathForCodePage(const std::wstring& path);

}  // namespace marnoth
