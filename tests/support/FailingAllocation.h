#pragma once

#include <cstdint>

namespace marnoth::test {

/// While one of these is alive, one allocation of this thread fails: the one with the given number, counted
/// from 1. For programs that link FailingAllocation.cpp, which replaces the global allocation functions.
class FailingAllocation {
public:
    explicit FailingAllocation(std::int64_t number);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// False when there haven't been so many allocations yet.
    bool happened() const;
};

}  // namespace marnoth::test
