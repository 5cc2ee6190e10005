/// Memory that crosses interfaces fails where other memory does. The linker sends calls of `CoTaskMemAlloc`
/// here.

#include <cstddef>

#include "support/FailingAllocation.h"

extern "C" void* __real__Z14CoTaskMemAllocm(std::size_t bytes);
extern "C" void* __wrap__Z14CoTaskMemAllocm(std::size_t bytes) {
    return marnoth::test::allocationFails() ? nullptr : __real__Z14CoTaskMemAllocm(bytes);
}
