#pragma once

#include <cstdint>

#include "platform/bytes/RiffStream.h"
#include "project/Project.h"

namespace marnoth {

/// Bytes of the whole form of `project`, its outer header and all padding included. 64 bits: the form itself
/// can't be larger than `kLargestProject`.
std::int64_t projectBytes(const Project& project);
inline constexpr std::int64_t kLargestProject = 0xFFFFFFFFll + 8;  ///< what a RIFF header can say

/// Writes the form at the position of `stream`. Until everything is there the outer header says 0 bytes: a
/// file that a save left unfinished can be told. `E_FAIL` as soon as anything fails, with what was written
/// left where it is; otherwise `S_OK`. Long work: no lock may be held for it.
HRESULT writeProject(RiffStream& stream, const Project& project);

}  // namespace marnoth
