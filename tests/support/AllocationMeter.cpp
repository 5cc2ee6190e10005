#include "support/AllocationMeter.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();

/// Stands in front of every block.
struct Header {
    std::size_t bytes;
    void* start;  ///< of what the C allocator gave
};
constexpr std::size_t kLeastAlignment = 16;
static_assert(sizeof(Header) % kLeastAlignment == 0);

std::atomic<std::ptrdiff_t> held{0};
std::atomic<std::ptrdiff_t> heldAtStart{0};
std::atomic<std::ptrdiff_t> peak{0};
std::atomic<std::size_t> blocksGiven{0};
std::atomic<std::size_t> blocksGivenAtStart{0};
std::atomic<std::size_t> refusedFrom{kNever};

void* take(std::size_t bytes, std::size_t alignment = kLeastAlignment) {
    alignment = std::max(alignment, kLeastAlignment);
    const std::size_t extra = sizeof(Header) + alignment;
    if (bytes >= refusedFrom || bytes > kNever - extra) return nullptr;
    void* start = std::malloc(bytes + extra);
    if (!start) return nullptr;
    const auto behindHeader = reinterpret_cast<std::uintptr_t>(start) + sizeof(Header);
    const auto block = (behindHeader + alignment - 1) / alignment * alignment;
    *(reinterpret_cast<Header*>(block) - 1) = {bytes, start};
    held += static_cast<std::ptrdiff_t>(bytes);
    peak = std::max<std::ptrdiff_t>(peak, held);
    return reinterpret_cast<void*>(block);
}

void* takeOrThrow(std::size_t bytes, std::size_t alignment = kLeastAlignment) {
    if (void* memory = take(bytes, alignment)) return memory;
    throw std::bad_alloc();
}

void give(void* memory) {
    if (!memory) return;
    const Header header = *(static_cast<Header*>(memory) - 1);
    held -= static_cast<std::ptrdiff_t>(header.bytes);
    ++blocksGiven;
    std::free(header.start);
}

}  // namespace

void* operator new(std::size_t bytes) {
    return takeOrThrow(bytes);
}
void* operator new[](std::size_t bytes) {
    return takeOrThrow(bytes);
}
void* operator new(std::size_t bytes, std::align_val_t alignment) {
    return takeOrThrow(bytes, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return take(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
    return take(bytes);
}
void* operator new(std::size_t bytes, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return take(bytes, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept {
    give(memory);
}
void operator delete[](void* memory) noexcept {
    give(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    give(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    give(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    give(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    give(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    give(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    give(memory);
}
void operator delete(void* memory, std::align_val_t, const std::nothrow_t&) noexcept {
    give(memory);
}

namespace marnoth::test {

AllocationMeter::AllocationMeter() {
    heldAtStart = held.load();
    peak = held.load();
    blocksGivenAtStart = blocksGiven.load();
}

AllocationMeter::~AllocationMeter() {
    refusedFrom = kNever;
}

std::size_t AllocationMeter::peakBytes() const {
    return static_cast<std::size_t>(peak - heldAtStart);
}

std::ptrdiff_t AllocationMeter::heldBytes() const {
    return held - heldAtStart;
}

std::size_t AllocationMeter::frees() const {
    return blocksGiven - blocksGivenAtStart;
}

void AllocationMeter::refuseFrom(std::size_t bytes) {
    refusedFrom = bytes;
}

}  // namespace marnoth::test
