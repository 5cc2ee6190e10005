#pragma once

#include <atomic>

namespace marnoth {

/// What the pages of an instance have in common, and what stays of them while none is open. Any thread but
/// the one that renders.
struct PageMemory {
    std::atomic<int> open = 0;  ///< how many pages there are
};

}  // namespace marnoth
