#pragma once

#include <string>

#include "shells/cli/Streams.h"

namespace marnoth {

/// What `marnoth info` was asked for.
struct InfoOptions {
    std::string file;  ///< in UTF-8
    bool json = false;
    bool recover = false;  ///< of a project that can't be read its backup is told
};

/// Prints what the instrument sees in a file; as JSON when asked. Of a WAV file that is format, length, tags,
/// loop data, and the grains that it would cut; of a project its files, pads and key map. Throws
/// `FileFailure` when the file can't be read.
void runInfo(const InfoOptions& options, const Streams& streams);

}  // namespace marnoth
