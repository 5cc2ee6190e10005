#pragma once

#include <atomic>

namespace marnoth {

/// What keeps the module that carries the instrument loaded: everything that is given out holds one lock as
/// long as it lives, and a server adds those that its callers ask for. Any thread.
class ModuleLock {
public:
    ModuleLock() { ++count_; }
    ~ModuleLock() { --count_; }
    ModuleLock(const ModuleLock&) = delete;
    ModuleLock& operator=(const ModuleLock&) = delete;

    /// Above 0 the module must stay.
    static long count() { return count_; }

private:
    static inline std::atomic<long> count_ = 0;
};

}  // namespace marnoth
