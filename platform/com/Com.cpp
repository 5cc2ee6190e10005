#include "platform/com/Com.h"

#ifndef _WIN32

#include <cstdlib>

void* CoTaskMemAlloc(std::size_t bytes) {
    return std::malloc(bytes ? bytes : 1);
}

void* CoTaskMemRealloc(void* memory, std::size_t bytes) {
    if (bytes || !memory) return std::realloc(memory, bytes ? bytes : 1);
    std::free(memory);
    return nullptr;
}

void CoTaskMemFree(void* memory) {
    std::free(memory);
}

#endif
