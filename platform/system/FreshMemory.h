#pragma once

#include <cstddef>

namespace marnoth {

/// Tells the system that memory, fresh and about to be filled, is best brought in at once: a run of some
/// megabytes in large pages, a smaller one in a single call rather than page by page as it is touched. A
/// hint; nothing about the memory's contents or its release changes.
void expectFilling(void* memory, std::size_t bytes);

}  // namespace marnoth
