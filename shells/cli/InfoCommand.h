#pragma once

#include <iosfwd>
#include <string>

namespace marnoth {

/// Prints what the instrument sees in a file; as JSON when asked. Of a WAV file that is format, length, tags,
/// loop data, and the grains that it would cut; of a project its files, pads and key map. Throws
/// `FileFailure` when the file can't be read.
void runInfo(const std::string& file, bool json, std::ostream& out);

}  // namespace marnoth
