#pragma once

#include <iosfwd>
#include <string>

namespace marnoth {

/// Prints what the instrument sees in a WAV file: format, length, tags, loop data, and the grains that it
/// would cut; as JSON when asked. Throws `FileFailure` when the file can't be read.
void runInfo(const std::string& file, bool json, std::ostream& out);

}  // namespace marnoth
