#pragma once

#include <mutex>

namespace marnoth {

/// The recursive lock of an object. The instrument has exactly one, that of `CPzi`: the streaming thread
/// holds it for a block, everyone else for one operation.
class CCritSec {
public:
    CCritSec() = default;
    CCritSec(const CCritSec&) = delete;
    CCritSec& operator=(const CCritSec&) = delete;

    void Lock() { mutex_.lock(); }
    void Unlock() { mutex_.unlock(); }

private:
    std::recursive_mutex mutex_;
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
