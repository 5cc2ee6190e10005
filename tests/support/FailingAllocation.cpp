#include "support/FailingAllocation.h"

#include <cstdlib>
#include <new>

namespace {

/// Allocations until one fails; below 1 none will.
thread_local std::int64_t countdown = 0;

void* take(std::size_t bytes) {
    if (countdown > 0 && --countdown == 0) return nullptr;
    return std::malloc(bytes > 0 ? bytes : 1);
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

namespace marnoth::test {

FailingAllocation::FailingAllocation(std::int64_t number) {
    countdown = number;
}

FailingAllocation::~FailingAllocation() {
    countdown = 0;
}

bool FailingAllocation::happened() const {
    return countdown == 0;
}

}  // namespace marnoth::test
