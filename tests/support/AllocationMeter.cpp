#include "support/AllocationMeter.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <limits>
#include <new>

namespace {

/// The size is kept in front of the block, with room for the strictest alignment.
constexpr std::size_t kHeader = 16;
constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();

std::atomic<std::ptrdiff_t> held{0};
std::atomic<std::ptrdiff_t> heldAtStart{0};
std::atomic<std::ptrdiff_t> peak{0};
std::atomic<std::size_t> refusedFrom{kNever};

void* take(std::size_t bytes) {
    if (bytes >= refusedFrom || bytes > kNever - kHeader) return nullptr;
    auto* block = static_cast<std::byte*>(std::malloc(bytes + kHeader));
    if (!block) return nullptr;
    *reinterpret_cast<std::size_t*>(block) = bytes;
    held += static_cast<std::ptrdiff_t>(bytes);
    peak = std::max<std::ptrdiff_t>(peak, held);
    return block + kHeader;
}

void give(void* memory) {
    if (!memory) return;
    auto* block = static_cast<std::byte*>(memory) - kHeader;
    held -= static_cast<std::ptrdiff_t>(*reinterpret_cast<std::size_t*>(block));
    std::free(block);
}

}  // namespace

void* operator new(std::size_t bytes) {
    if (void* memory = take(bytes)) return memory;
    throw std::bad_alloc();
}
void* operator new[](std::size_t bytes) {
    return operator new(bytes);
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return take(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
    return take(bytes);
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
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    give(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    give(memory);
}

namespace marnoth::test {

AllocationMeter::AllocationMeter() {
    heldAtStart = held.load();
    peak = held.load();
}

AllocationMeter::~AllocationMeter() {
    refusedFrom = kNever;
}

std::size_t AllocationMeter::peakBytes() const {
    return static_cast<std::size_t>(peak - heldAtStart);
}

void AllocationMeter::refuseFrom(std::size_t bytes) {
    refusedFrom = bytes;
}

}  // namespace marnoth::test
