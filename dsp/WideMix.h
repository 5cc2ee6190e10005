#pragma once

/// Loops of constant gains in the widest registers that the processor has. Internal to MixKernels.cpp.
namespace marnoth::mix {

// The Windows compiler doesn't align its stack for wide registers, and clang doesn't know the attributes:
// with both the vectors that are certain do the work.
#if defined(__x86_64__) && !defined(_WIN32) && !defined(__clang__)
#define MARNOTH_WIDE_MIX 1

/// The same loop for wider registers. Products and sums are those of the narrow one, sample by sample.
template <auto loop, class... Words>
[[gnu::target("avx2")]] void with256(const Words&... words) {
    loop(words...);
}
template <auto loop, class... Words>
[[gnu::target("avx512f,avx512vl,avx512dq,prefer-vector-width=512")]] void with512(const Words&... words) {
    loop(words...);
}
#endif

/// Runs `loop`, an always-inlined function, as compiled for wide registers. False, with nothing done, where
/// there are none.
template <auto loop, class... Words>
bool ranWide([[maybe_unused]] const Words&... words) {
#ifdef MARNOTH_WIDE_MIX
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
        __builtin_cpu_supports("avx512dq")) {
        with512<loop>(words...);
        return true;
    }
    if (__builtin_cpu_supports("avx2")) {
        with256<loop>(words...);
        return true;
    }
#endif
    return false;
}

template <auto loop, class... Words>
void withWidest(const Words&... words) {
    if (!ranWide<loop>(words...)) loop(words...);
}

}  // namespace marnoth::mix
