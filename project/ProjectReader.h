#pragma once

#include "platform/bytes/RiffStream.h"
#include "project/Project.h"
#include "seam/LoadFault.h"

namespace marnoth {

/// Reads the form that is searched from the position of `stream` on into `project`, and checks it: behind
/// this point everything is within the limits of the form, every number of volume, pan and pitch is finite,
/// and every wave holds as many frames as it says, with its guard frame.
///
/// Nothing is trusted: storage is taken only for what the stream really holds. After a fault `project` is
/// unspecified but for `auditionEnabled`, which comes as soon as it has been read. Long work: no lock may be
/// held for it.
LoadFault readProject(RiffStream& stream, Project& project);

/// The first grain of a pad that names a grain below 0 of a file that there is: the form can hold it, no
/// engine takes it.
LoadFault grainBelowZero(const Project& project);

}  // namespace marnoth
