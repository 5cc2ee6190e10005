#pragma once

#include <string>

namespace marnoth {

/// Where the next take goes: "take-1.wav" and so on, the first name that nothing has, in a folder "Marnoth"
/// of the user's music folder, which is made. UTF-8.
std::string newTakeName();

/// As users write it: "~" for their own folder.
std::string shortName(const std::string& file);

}  // namespace marnoth
