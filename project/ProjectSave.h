#pragma once

#include <filesystem>

#include "platform/com/Com.h"
#include "platform/files/FileSystem.h"
#include "project/Project.h"

namespace marnoth {

/// Writes a project to a file or a stream, brought into the form of projects first. `E_FAIL` for whatever
/// goes wrong, otherwise `S_OK`. Long work: no lock may be held for it.

/// In place, with what stood under the name kept beside it until the new file is whole and the medium has it.
/// Nothing is touched for a project that can't be saved at all: one too large, or with a wave without
/// samples. Saves of all threads come one after the other.
HRESULT saveProject(Project project, const std::filesystem::path& path, FileSystem& files = systemFiles());

/// At the stream's position, and leaves the stream behind the form. A stream that doesn't tell its position
/// decides the result.
HRESULT saveProject(Project project, IStream& stream);

}  // namespace marnoth
