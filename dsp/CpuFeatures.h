#pragma once

#include <atomic>
#include <cstdint>

namespace marnoth {

/// What is known of the processor. Cleared until the first question, then filled once for all.
///
/// Any thread may fill it; all of them write the same values. Whoever sees `cpuQueried` set sees the rest.
struct CpuState {
    std::atomic<std::uint32_t> cpuQueried{0};
    std::atomic<std::uint32_t> hasSse{0};
    std::atomic<std::uint32_t> hasSse2{0};
    std::atomic<std::uint32_t> hyperThreading{0};
};

/// Filled by `HasSse` and `HasSse2` alone.
extern constinit CpuState cpuState;

/// Whether kernels may take their fast forms: 1. Nothing writes it.
extern const std::uint32_t fastMixEnabled;

/// 1 or 0. Any thread, allocates nothing.
std::uint32_t GetFastMixEnabled();

/// Whether there are vectors of four floats, for the fast forms of the float family, and of two doubles, for
/// those of the double one: 1 on 64-bit x86, where both are certain, else 0. Any thread, allocates nothing.
std::uint32_t HasSse();
std::uint32_t HasSse2();

/// A word of the processor's identification. The record that it would be read from is empty: 1 for query 4,
/// 0 for every other.
std::uint32_t GetCpuInfo(std::uint32_t query);

/// From here on arithmetic of the calling thread gives 0 where a result is too small for a normal number
/// (bit 15 of MXCSR), so that a long decay doesn't end in numbers that cost a hundred times the rest. Stays
/// in force; threads that this one starts may inherit it. Does nothing on a processor without that register:
/// the fast forms, the only callers, aren't taken there. Where it has a mode of its own (FPCR.FZ on 64-bit
/// ARM) fast forms for it belong with that mode here.
void flushDenormals();

}  // namespace marnoth
