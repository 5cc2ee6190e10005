#include "support/RealTimeGuard.h"

#include <cstdint>
#include <cstdlib>
#include <new>

#if defined(__linux__) && !defined(MARNOTH_SANITIZED)
#define MARNOTH_WATCH_SYSTEM 1
#include <dlfcn.h>
#include <pthread.h>
#include <semaphore.h>
#include <stdio.h>
#include <sys/types.h>
#include <time.h>
#endif

namespace {

struct Watch {
    bool on;
    marnoth::test::RealTimeGuard::Offences offences;
    std::uintptr_t allowedBegin;
    std::uintptr_t allowedEnd;
};

thread_local Watch watch{};

void noteAllocation() {
    if (watch.on) ++watch.offences.allocations;
}

void noteFree(const void* memory) {
    if (watch.on && memory) ++watch.offences.frees;
}

#ifdef MARNOTH_WATCH_SYSTEM
void noteWait(const void* lock) {
    const auto address = reinterpret_cast<std::uintptr_t>(lock);
    const bool allowed = address >= watch.allowedBegin && address < watch.allowedEnd;
    if (watch.on && !allowed) ++watch.offences.waits;
}

/// The function of that name behind ours.
template <class Function>
Function* behind(Function*, const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}
#endif

}  // namespace

namespace marnoth::test {

RealTimeGuard::RealTimeGuard(const void* lockOwner, std::size_t bytes) {
    const auto begin = reinterpret_cast<std::uintptr_t>(lockOwner);
    watch = {true, {}, begin, begin + bytes};
}

RealTimeGuard::Offences RealTimeGuard::finish() {
    watch.on = false;
    return watch.offences;
}

bool RealTimeGuard::watchesTheSystem() {
#ifdef MARNOTH_WATCH_SYSTEM
    return true;
#else
    return false;
#endif
}

}  // namespace marnoth::test

#ifdef MARNOTH_WATCH_SYSTEM

// The C allocator, on top of the library's own entry points; `operator new` and `delete` come here too.

extern "C" {

void* __libc_malloc(std::size_t bytes);
void __libc_free(void* memory);
void* __libc_calloc(std::size_t count, std::size_t bytes);
void* __libc_realloc(void* memory, std::size_t bytes);
void* __libc_memalign(std::size_t alignment, std::size_t bytes);

void* malloc(std::size_t bytes) noexcept {
    noteAllocation();
    return __libc_malloc(bytes);
}
void free(void* memory) noexcept {
    noteFree(memory);
    __libc_free(memory);
}
void* calloc(std::size_t count, std::size_t bytes) noexcept {
    noteAllocation();
    return __libc_calloc(count, bytes);
}
void* realloc(void* memory, std::size_t bytes) noexcept {
    noteAllocation();
    return __libc_realloc(memory, bytes);
}
void* aligned_alloc(std::size_t alignment, std::size_t bytes) noexcept {
    noteAllocation();
    return __libc_memalign(alignment, bytes);
}
int posix_memalign(void** memory, std::size_t alignment, std::size_t bytes) noexcept {
    noteAllocation();
    *memory = __libc_memalign(alignment, bytes);
    return *memory ? 0 : 12;
}

// Calls that may wait. Each looks for the library's function once, which happens at the latest when the
// program's own start uses it; looking it up under a guard would count as allocations.

#define MARNOTH_WATCHED(result, name, parameters, arguments, waitsOn) \
    result name parameters {                                          \
        static auto* const real = behind(&name, #name);               \
        noteWait(waitsOn);                                            \
        return real arguments;                                        \
    }

MARNOTH_WATCHED(int, pthread_mutex_lock, (pthread_mutex_t * lock) noexcept, (lock), lock)
MARNOTH_WATCHED(int, pthread_rwlock_rdlock, (pthread_rwlock_t * lock) noexcept, (lock), lock)
MARNOTH_WATCHED(int, pthread_rwlock_wrlock, (pthread_rwlock_t * lock) noexcept, (lock), lock)
MARNOTH_WATCHED(int, pthread_cond_wait, (pthread_cond_t * condition, pthread_mutex_t* lock),
                (condition, lock), nullptr)
MARNOTH_WATCHED(int, pthread_cond_timedwait,
                (pthread_cond_t * condition, pthread_mutex_t* lock, const timespec* until),
                (condition, lock, until), nullptr)
MARNOTH_WATCHED(int, sem_wait, (sem_t * semaphore), (semaphore), nullptr)
MARNOTH_WATCHED(int, nanosleep, (const timespec* time, timespec* rest), (time, rest), nullptr)
MARNOTH_WATCHED(int, clock_nanosleep, (clockid_t clock, int flags, const timespec* time, timespec* rest),
                (clock, flags, time, rest), nullptr)
MARNOTH_WATCHED(ssize_t, read, (int file, void* bytes, std::size_t count), (file, bytes, count), nullptr)
MARNOTH_WATCHED(ssize_t, write, (int file, const void* bytes, std::size_t count), (file, bytes, count),
                nullptr)
MARNOTH_WATCHED(std::size_t, fwrite, (const void* bytes, std::size_t size, std::size_t count, FILE* file),
                (bytes, size, count, file), nullptr)
MARNOTH_WATCHED(FILE*, fopen, (const char* name, const char* mode), (name, mode), nullptr)

#undef MARNOTH_WATCHED

}  // extern "C"

#else

// `operator new` and `delete` alone, on top of the C allocator.

void* operator new(std::size_t bytes) {
    noteAllocation();
    if (void* memory = std::malloc(bytes ? bytes : 1)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    noteAllocation();
    return std::malloc(bytes ? bytes : 1);
}
void* operator new[](std::size_t bytes) {
    return operator new(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t& tag) noexcept {
    return operator new(bytes, tag);
}
void operator delete(void* memory) noexcept {
    noteFree(memory);
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    operator delete(memory);
}
void operator delete[](void* memory) noexcept {
    operator delete(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    operator delete(memory);
}

#endif
