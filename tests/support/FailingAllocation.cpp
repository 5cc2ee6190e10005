#include "support/FailingAllocation.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

/// Allocations until one fails; below 1 none will.
std::atomic<std::int64_t> countdown{0};
std::atomic<bool> endsForGood{false};
std::atomic<bool> hasFailed{false};

void* take(std::size_t bytes) {
    return marnoth::test::allocationFails() ? nullptr : std::malloc(bytes > 0 ? bytes : 1);
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
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}

#ifndef _WIN32

namespace {

void* takeAligned(std::size_t bytes, std::align_val_t alignment) {
    const auto size = static_cast<std::size_t>(alignment);
    return marnoth::test::allocationFails() ? nullptr
                                            : std::aligned_alloc(size, (bytes + size - 1) / size * size);
}

}  // namespace

void* operator new(std::size_t bytes, std::align_val_t alignment) {
    if (void* memory = takeAligned(bytes, alignment)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t bytes, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return takeAligned(bytes, alignment);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t, const std::nothrow_t&) noexcept {
    std::free(memory);
}

#endif

namespace marnoth::test {

bool allocationFails() {
    if (hasFailed) return endsForGood;
    // Threads that come by while the last one is counted don't count.
    if (countdown <= 0 || --countdown != 0) return false;
    hasFailed = true;
    return true;
}

FailingAllocation::FailingAllocation(std::int64_t number, MemoryEnds kind) {
    hasFailed = false;
    endsForGood = kind == MemoryEnds::forGood;
    countdown = number;
}

FailingAllocation::~FailingAllocation() {
    countdown = 0;
    endsForGood = false;
}

bool FailingAllocation::happened() const {
    return hasFailed;
}

}  // namespace marnoth::test
