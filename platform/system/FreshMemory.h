#pragma once

#include <cstddef>
#include <memory>

namespace marnoth {

/// Tells the system that memory, fresh and about to be filled, is best brought in at once: a run of some
/// megabytes in large pages, a smaller one in a single call rather than page by page as it is touched. A
/// hint; nothing about the memory's contents or its release changes.
void expectFilling(void* memory, std::size_t bytes);

/// Gives memory that came straight from the system back to it.
struct FreshMemoryRelease {
    std::size_t bytes = 0;
    void operator()(std::byte* memory) const;
};
using FreshMemory = std::unique_ptr<std::byte[], FreshMemoryRelease>;

/// `bytes`, 1 to 2^62, straight from the system, which has filled them with zeros: they are about to be
/// filled by adding to them. They begin at a multiple of 64; from 2 MiB on at a large page where there are
/// such pages. Null when there is no memory.
FreshMemory takeZeros(std::size_t bytes);

}  // namespace marnoth
