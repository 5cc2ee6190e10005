#pragma once

#include <cstdint>

namespace marnoth::test {

/// Which allocations fail: one, or all from that one on.
enum class MemoryEnds { once, forGood };

/// While one of these is alive, an allocation of the process fails: the one with the given number, counted
/// from 1 over all threads, and with `forGood` all behind it. For programs that link FailingAllocation.cpp,
/// which replaces the global allocation functions. Where they link FailingTaskMemory.cpp too, and pass
/// `-Wl,--wrap=_Z14CoTaskMemAllocm`, memory that crosses interfaces is counted with it.
class FailingAllocation {
public:
    explicit FailingAllocation(std::int64_t number, MemoryEnds kind = MemoryEnds::once);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// False when there haven't been so many allocations yet.
    bool happened() const;
};

/// Counts an allocation; true when it has to fail.
bool allocationFails();

}  // namespace marnoth::test
