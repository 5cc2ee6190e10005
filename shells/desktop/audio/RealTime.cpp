#include "shells/desktop/audio/RealTime.h"

#include <pthread.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/resource.h>

#include <thread>

namespace marnoth {

namespace {

/// Below that of JACK's clients and of the threads that bring sound to devices.
constexpr int kPriorityOfOwnClocks = 10;

/// Only without a limit: behind one, memory that is asked for later would be refused, and a project not
/// loaded.
bool lockMemory() {
    rlimit limit{};
    const bool isLimited = getrlimit(RLIMIT_MEMLOCK, &limit) != 0 || limit.rlim_cur != RLIM_INFINITY;
    return !isLimited && mlockall(MCL_CURRENT | MCL_FUTURE | MCL_ONFAULT) == 0;
}

}  // namespace

bool givePriority() {
    const sched_param parameters{kPriorityOfOwnClocks};
    return pthread_setschedparam(pthread_self(), SCHED_FIFO, &parameters) == 0;
}

RealTimeRights takeRealTimeRights() {
    RealTimeRights rights;
    rights.locksMemory = lockMemory();
    std::thread([&] { rights.givesPriority = givePriority(); }).join();
    return rights;
}

std::string missingRights(RealTimeRights rights) {
    if (rights.locksMemory && rights.givesPriority) return {};
    const std::string lacks = rights.locksMemory     ? "real-time priority"
                              : rights.givesPriority ? "locked memory"
                                                     : "real-time priority and locked memory";
    const std::string limits = rights.locksMemory     ? "rtprio"
                               : rights.givesPriority ? "memlock"
                                                      : "rtprio and memlock";
    return "The system doesn't grant " + lacks +
           ": sound may drop out while it is busy. The user's limits (" + limits + ") decide that.";
}

}  // namespace marnoth
