#pragma once

#include <cstddef>

namespace marnoth::test {

/// Counts what a thread must not do while it renders: memory taken or given back, and calls that may wait.
///
/// Watches the thread that made it, from construction to `finish`; one at a time. `operator new` and `delete`
/// are watched everywhere; on Linux without a sanitizer so are the C allocator, locks, conditions, sleeps and
/// file operations. A program that uses it must be linked with RealTimeGuard.cpp, which replaces those
/// functions.
class RealTimeGuard {
public:
    struct Offences {
        int allocations = 0;
        int frees = 0;
        int waits = 0;
        int total() const { return allocations + frees + waits; }
    };

    RealTimeGuard() : RealTimeGuard(nullptr, 0) {}
    /// Locks that lie inside the object of `bytes` at `lockOwner` are allowed.
    RealTimeGuard(const void* lockOwner, std::size_t bytes);
    RealTimeGuard(const RealTimeGuard&) = delete;
    RealTimeGuard& operator=(const RealTimeGuard&) = delete;
    ~RealTimeGuard() { finish(); }

    /// Ends the watch.
    Offences finish();

    /// Whether more than `operator new` and `delete` is watched in this build.
    static bool watchesTheSystem();
};

}  // namespace marnoth::test
