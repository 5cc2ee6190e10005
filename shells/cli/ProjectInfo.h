#pragma once

#include <iosfwd>
#include <string>

namespace marnoth {

/// Prints what a project holds: its files, the pads that aren't as an empty project has them, the key map,
/// options and sizes; as JSON when asked. Throws `FileFailure` with the reason when it can't be read whole.
void tellProject(const std::string& file, bool json, std::ostream& out);

}  // namespace marnoth
