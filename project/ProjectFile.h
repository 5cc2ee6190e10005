#pragma once

#include <string>

#include "platform/bytes/RiffStream.h"
#include "seam/LoadFault.h"

namespace marnoth {

/// Characters of a project's name, folders and all, that are taken.
inline constexpr std::size_t kLongestProjectPath = 259;

/// Goes to where the form is searched from in a state, which is wrapped, or a bare form. False for less than
/// the beginning of one.
bool passWrapper(RiffStream& stream);

/// Opens a file where the form of a project is searched from: at its beginning or, when the name holds no "."
/// at all, behind the 24 bytes that may stand in front of it. `readProject` finds out what is there.
/// A longer `path` is cut at `kLongestProjectPath`.
LoadFault openProject(RiffStream& stream, const std::wstring& path);

}  // namespace marnoth
