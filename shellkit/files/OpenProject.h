#pragma once

#include <string>

#include "platform/bytes/RiffStream.h"

namespace marnoth {

/// Opens a file at the form of a project: at its beginning, or behind the 24 bytes of a wrapper. False, with
/// nothing open, when there is none.
bool openProject(RiffStream& stream, const std::string& file);

/// Whether a file is a project: by what it holds, or, where that is neither a project nor a WAV file, by
/// its name.
bool isProject(const std::string& file);

}  // namespace marnoth
