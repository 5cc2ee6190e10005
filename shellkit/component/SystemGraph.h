#pragma once

#include "hostkit/AudioGraph.h"

namespace marnoth {

/// Makes an empty graph of the system's, by the filter graph manager. It has no clock, so that it plays as
/// fast as blocks come. The thread must be in an apartment, of either kind, for as long as the graph lives.
/// A `GraphMaker`.
RefPtr<AudioGraph> makeSystemGraph();

}  // namespace marnoth
