#include "platform/system/LargePages.h"

#include <cstdint>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace marnoth {

#ifdef __linux__

void preferLargePages(void* memory, std::size_t bytes) {
    constexpr std::uintptr_t kLargePage = std::uintptr_t{1} << 21;
    const auto address = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t begin = (address + kLargePage - 1) / kLargePage * kLargePage;
    const std::uintptr_t end = (address + bytes) / kLargePage * kLargePage;
    // A system without large pages refuses, and nothing is lost.
    if (memory && begin < end) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
}

#else

void preferLargePages(void*, std::size_t) {}

#endif

}  // namespace marnoth
