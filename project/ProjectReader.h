#pragma once

#include "platform/bytes/RiffStream.h"
#include "project/Project.h"

namespace marnoth {

/// Reads the form that is searched from the position of `stream` on into `project`, and checks it: behind
/// this point everything is within the limits of the form, every number of volume, pan and pitch is finite,
/// and every wave holds as many frames as it says, with its guard frame.
///
/// Nothing is trusted: storage is taken only for what the stream really holds. `E_FAIL` for anything that
/// isn't a whole project, `E_OUTOFMEMORY`, or `S_OK`. After a failure `project` is unspecified but for
/// `auditionEnabled`, which comes as soon as it has been read. Long work: no lock may be held for it.
HRESULT readProject(RiffStream& stream, Project& project);

}  // namespace marnoth
