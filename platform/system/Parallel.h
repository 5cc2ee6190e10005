#pragma once

#include <cstddef>
#include <functional>

namespace marnoth {

/// Calls `work` for each index below `count`, in any order, on this thread and as many others as the machine
/// has processors for, four in all at most. Returns when all is done. `work` must not throw, and its calls
/// must not touch the same things. Without memory for threads it all happens on this one.
void forEachInParallel(std::size_t count, const std::function<void(std::size_t)>& work);

}  // namespace marnoth
