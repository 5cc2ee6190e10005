#include "bench/LockMeter.h"

#include <dlfcn.h>
#include <pthread.h>
#include <time.h>

#include <atomic>
#include <cstdint>

namespace {

// Where the watched lock lies.
std::atomic<std::uintptr_t> watchedBegin{0};
std::atomic<std::uintptr_t> watchedEnd{0};
std::atomic<std::int64_t> longestHold{0};
std::atomic<std::int64_t> holdCount{0};

thread_local int depth = 0;
thread_local std::int64_t heldSince = 0;

bool isWatched(const pthread_mutex_t* mutex) {
    const auto address = reinterpret_cast<std::uintptr_t>(mutex);
    return address >= watchedBegin.load(std::memory_order_relaxed) &&
           address < watchedEnd.load(std::memory_order_relaxed);
}

/// Nanoseconds of this thread's processor time.
std::int64_t threadTime() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

void noteLocked(const pthread_mutex_t* mutex) {
    if (isWatched(mutex) && depth++ == 0) heldSince = threadTime();
}

void noteUnlocking(const pthread_mutex_t* mutex) {
    if (!isWatched(mutex) || --depth > 0) return;
    const std::int64_t hold = threadTime() - heldSince;
    std::int64_t longest = longestHold;
    while (hold > longest && !longestHold.compare_exchange_weak(longest, hold)) {
    }
    ++holdCount;
}

/// The function of that name behind ours.
template <class Function>
Function* behind(Function*, const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
    static auto* const real = behind(&pthread_mutex_lock, "pthread_mutex_lock");
    const int result = real(mutex);
    if (result == 0) noteLocked(mutex);
    return result;
}

int pthread_mutex_trylock(pthread_mutex_t* mutex) noexcept {
    static auto* const real = behind(&pthread_mutex_trylock, "pthread_mutex_trylock");
    const int result = real(mutex);
    if (result == 0) noteLocked(mutex);
    return result;
}

int pthread_mutex_unlock(pthread_mutex_t* mutex) noexcept {
    static auto* const real = behind(&pthread_mutex_unlock, "pthread_mutex_unlock");
    noteUnlocking(mutex);
    return real(mutex);
}

}  // extern "C"

namespace marnoth::bench {

LockMeter::LockMeter(const CCritSec& lock) {
    watchedBegin = reinterpret_cast<std::uintptr_t>(&lock);
    watchedEnd = watchedBegin + sizeof lock;
    restart();
}

LockMeter::~LockMeter() {
    watchedBegin = watchedEnd = 0;
}

void LockMeter::restart() {
    longestHold = 0;
    holdCount = 0;
}

std::int64_t LockMeter::longest() const {
    return longestHold;
}

std::int64_t LockMeter::holds() const {
    return holdCount;
}

}  // namespace marnoth::bench
