#include "platform/system/FreshMemory.h"

#include <cstdint>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace marnoth {

#ifdef __linux__
namespace {

/// Tells the system about the whole pages of a size that lie inside; whether there are any. A system that
/// doesn't know the advice refuses, and nothing is lost.
bool advisePages(void* memory, std::size_t bytes, std::uintptr_t page, int advice) {
    const auto address = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t begin = (address + page - 1) / page * page;
    const std::uintptr_t end = (address + bytes) / page * page;
    if (!memory || begin >= end) return false;
    madvise(static_cast<std::byte*>(memory) + (begin - address), end - begin, advice);
    return true;
}

}  // namespace

void expectFilling(void* memory, std::size_t bytes) {
    constexpr std::uintptr_t kPage = std::uintptr_t{1} << 12;
    constexpr std::uintptr_t kLargePage = std::uintptr_t{1} << 21;
    constexpr std::size_t kWorthACall = 16 * kPage;
    if (advisePages(memory, bytes, kLargePage, MADV_HUGEPAGE)) return;
#ifdef MADV_POPULATE_WRITE
    if (bytes >= kWorthACall) advisePages(memory, bytes, kPage, MADV_POPULATE_WRITE);
#endif
}

#else

void expectFilling(void*, std::size_t) {}

#endif

}  // namespace marnoth
