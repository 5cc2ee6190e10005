#include "dsp/CpuFeatures.h"

#if defined(__x86_64__)
#include <xmmintrin.h>
#endif

namespace marnoth {
namespace {

#if defined(__x86_64__)
constexpr std::uint32_t kVectors = 1;
#else
constexpr std::uint32_t kVectors = 0;
#endif

constexpr std::uint32_t kHyperThreadingQuery = 31;

void fillOnce() {
    if (cpuState.cpuQueried.load(std::memory_order_acquire) != 0) return;
    cpuState.hasSse.store(kVectors, std::memory_order_relaxed);
    cpuState.hasSse2.store(kVectors, std::memory_order_relaxed);
    cpuState.hyperThreading.store(GetCpuInfo(kHyperThreadingQuery), std::memory_order_relaxed);
    cpuState.cpuQueried.store(1, std::memory_order_release);
}

}  // namespace

constinit CpuState cpuState;
const std::uint32_t fastMixEnabled = 1;

std::uint32_t GetFastMixEnabled() {
    return fastMixEnabled;
}

std::uint32_t HasSse() {
    fillOnce();
    return cpuState.hasSse.load(std::memory_order_relaxed);
}

std::uint32_t HasSse2() {
    fillOnce();
    return cpuState.hasSse2.load(std::memory_order_relaxed);
}

std::uint32_t GetCpuInfo(std::uint32_t query) {
    return query == 4 ? 1 : 0;
}

void flushDenormals() {
#if defined(__x86_64__)
    const unsigned mode = _mm_getcsr();
    // Reading the register is cheap, writing it isn't.
    if ((mode & _MM_FLUSH_ZERO_ON) == 0) _mm_setcsr(mode | _MM_FLUSH_ZERO_ON);
#endif
}

}  // namespace marnoth
