#pragma once

#ifdef _WIN32
#include <windows.h>

#include <cstdint>
#else
#include <pthread.h>

#include <atomic>
#endif

namespace marnoth {

/// The recursive lock of an object. The instrument has exactly one, that of `CPzi`: the streaming thread
/// holds it for a block, everyone else for one operation.
///
/// Whoever holds it runs at the priority of the most urgent thread that waits for it, so that the page,
/// pushed aside by other programs in the middle of an operation, doesn't keep audio waiting. Windows has no
/// such thing: a thread that finds it taken spins for a moment before it sleeps.
class CCritSec {
public:
    /// Where the system knows no inheritance of priority, the lock is a plain one. Throws `std::system_error`
    /// when there is no memory for a lock.
    CCritSec();
    ~CCritSec();
    CCritSec(const CCritSec&) = delete;
    CCritSec& operator=(const CCritSec&) = delete;

#ifdef _WIN32
    void Lock() {
        EnterCriticalSection(&section_);
    }
    void Unlock() {
        LeaveCriticalSection(&section_);
    }
    /// True on the thread that holds it.
    bool isHeldHere() const {
        return reinterpret_cast<std::uintptr_t>(section_.OwningThread) == GetCurrentThreadId();
    }

private:
    CRITICAL_SECTION section_;
#else
    void Lock() {
        if (!isHeldHere()) lockFirst();
        ++depth_;
    }
    void Unlock() {
        if (--depth_ == 0) unlockLast();
    }
    /// True on the thread that holds it.
    bool isHeldHere() const {
        return owner_.load(std::memory_order_relaxed) == pthread_self();
    }

private:
    void lockFirst();
    void unlockLast();

    pthread_mutex_t mutex_;
    /// The thread that holds it; `pthread_t{}` when nobody does. A thread that finds itself here needn't ask
    /// the mutex, which takes several times as long: within a block the lock is taken over and over.
    std::atomic<pthread_t> owner_{};
    int depth_ = 0;  ///< how often its owner has taken it
#endif
};

/// Holds a `CCritSec` for a scope, on every way out of it.
class CAutoLock {
public:
    explicit CAutoLock(CCritSec& lock) : lock_(lock) { lock_.Lock(); }
    ~CAutoLock() { lock_.Unlock(); }
    CAutoLock(const CAutoLock&) = delete;
    CAutoLock& operator=(const CAutoLock&) = delete;

private:
    CCritSec& lock_;
};

}  // namespace marnoth
