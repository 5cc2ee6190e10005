#pragma once

#include "platform/system/CritSec.h"

namespace marnoth {

/// The lock of a filter and its pins. A base class, named before the filter's, so that it is there first and
/// goes last.
struct FilterLock {
    CCritSec ownLock;
};

}  // namespace marnoth
