#pragma once

#include <string>
#include <string_view>

namespace marnoth {

/// What projects are called: names that end in ".mrn".

/// In letters of either case. Code page or UTF-8.
bool hasProjectExtension(std::string_view name);

/// `name` with the extension behind it, unless it has that already.
std::string withProjectExtension(std::string name);

}  // namespace marnoth
