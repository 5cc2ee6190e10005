#pragma once

#include <cstddef>

namespace marnoth::test {

/// Counts what the program takes from the free store and gives back while one of these is alive. For programs
/// that link AllocationMeter.cpp, which replaces the global allocation functions. One at a time, on one
/// thread.
class AllocationMeter {
public:
    AllocationMeter();
    ~AllocationMeter();
    AllocationMeter(const AllocationMeter&) = delete;
    AllocationMeter& operator=(const AllocationMeter&) = delete;

    /// The most bytes that were held at a time, of those taken since the beginning.
    std::size_t peakBytes() const;
    /// The bytes that are held now beyond those held at the beginning.
    std::ptrdiff_t heldBytes() const;
    /// Blocks given back since the beginning, also those taken before.
    std::size_t frees() const;
    /// Lets every allocation of `bytes` or more fail from now on.
    void refuseFrom(std::size_t bytes);
};

}  // namespace marnoth::test
