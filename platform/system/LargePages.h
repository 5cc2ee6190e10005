#pragma once

#include <cstddef>

namespace marnoth {

/// Tells the system that a large run of memory, fresh and about to be filled, is best served in large pages:
/// it then comes in few steps rather than in thousands. A hint; nothing about the memory's contents or its
/// release changes, and runs of less than a few megabytes are left alone.
void preferLargePages(void* memory, std::size_t bytes);

}  // namespace marnoth
