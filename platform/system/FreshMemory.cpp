#include "platform/system/FreshMemory.h"

#include <cstdint>
#include <cstring>
#include <new>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace marnoth {

#ifdef __linux__
namespace {

constexpr std::uintptr_t kPage = std::uintptr_t{1} << 12;
constexpr std::uintptr_t kLargePage = std::uintptr_t{1} << 21;
/// A multiple of the pages of every processor.
constexpr std::size_t kMappingUnit = std::size_t{1} << 16;

/// Tells the system about the whole pages of a size that lie inside. A system that doesn't know the advice
/// refuses, and nothing is lost.
void advisePages(void* memory, std::size_t bytes, std::uintptr_t page, int advice) {
    const auto address = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t begin = (address + page - 1) / page * page;
    const std::uintptr_t end = (address + bytes) / page * page;
    if (!memory || begin >= end) return;
    madvise(static_cast<std::byte*>(memory) + (begin - address), end - begin, advice);
}

/// Of `kLargePage` more than `size` bytes, keeps those from the first large page on.
std::byte* keepFromLargePage(std::byte* mapping, std::size_t size) {
    const std::size_t before = -reinterpret_cast<std::uintptr_t>(mapping) % kLargePage;
    if (before > 0) munmap(mapping, before);
    munmap(mapping + before + size, kLargePage - before);
    return mapping + before;
}

}  // namespace

void expectFilling(void* memory, std::size_t bytes) {
    constexpr std::size_t kWorthACall = 16 * kPage;
    advisePages(memory, bytes, kLargePage, MADV_HUGEPAGE);
#ifdef MADV_POPULATE_WRITE
    if (bytes >= kWorthACall) advisePages(memory, bytes, kPage, MADV_POPULATE_WRITE);
#endif
}

void FreshMemoryRelease::operator()(std::byte* memory) const {
    munmap(memory, bytes);
}

FreshMemory takeZeros(std::size_t bytes) {
    const std::size_t size = (bytes + kMappingUnit - 1) / kMappingUnit * kMappingUnit;
    const bool inLargePages = size >= kLargePage;
    void* const mapping = mmap(nullptr, inLargePages ? size + kLargePage : size, PROT_READ | PROT_WRITE,
                               MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED) return nullptr;
    auto* memory = static_cast<std::byte*>(mapping);
    if (inLargePages) memory = keepFromLargePage(memory, size);
    expectFilling(memory, bytes);
    return FreshMemory(memory, {size});
}

#else
namespace {

/// A line of the cache.
constexpr std::align_val_t kAlignment{64};

}  // namespace

void expectFilling(void*, std::size_t) {}

void FreshMemoryRelease::operator()(std::byte* memory) const {
    ::operator delete[](memory, kAlignment);
}

FreshMemory takeZeros(std::size_t bytes) {
    auto* const memory = static_cast<std::byte*>(::operator new[](bytes, kAlignment, std::nothrow));
    if (memory) std::memset(memory, 0, bytes);
    return FreshMemory(memory, {bytes});
}

#endif

}  // namespace marnoth
