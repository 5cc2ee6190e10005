#pragma once

#include <string>

namespace marnoth {

/// What the system lets the program do against dropouts.
struct RealTimeRights {
    bool locksMemory = false;    ///< nothing of the program is ever swapped out
    bool givesPriority = false;  ///< threads that render go before all others
};

/// Locks the program's memory, now and in future, as far as its limits allow, and tries whether threads may
/// have priority. Once, at the start.
RealTimeRights takeRealTimeRights();

/// What is missing, a sentence for the user with what helps; empty when nothing is.
std::string missingRights(RealTimeRights rights);

/// The calling thread goes before those without priority, but behind an audio system's own. False where that
/// isn't allowed: then all stays as it is.
bool givePriority();

}  // namespace marnoth
