#pragma once

namespace marnoth {

/// Whether this processor and its system have vectors of 256 and of 512 bits, those with AVX2 and with
/// AVX-512 F, VL and DQ. Any thread, allocates nothing.
inline bool has256() {
#if defined(__x86_64__)
    return __builtin_cpu_supports("avx2") != 0;
#else
    return false;
#endif
}

inline bool has512() {
#if defined(__x86_64__)
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
           __builtin_cpu_supports("avx512dq");
#else
    return false;
#endif
}

#if defined(__x86_64__)
#ifdef __clang__
#define MARNOTH_TARGET_512 "avx512f,avx512vl,avx512dq"
#else
#define MARNOTH_TARGET_512 "avx512f,avx512vl,avx512dq,prefer-vector-width=512"
#endif

/// The same loop for wider registers. Products and sums are those of the narrow one, sample by sample.
template <auto loop, class... Words>
[[gnu::target("avx2")]] void with256(const Words&... words) {
    loop(words...);
}
template <auto loop, class... Words>
[[gnu::target(MARNOTH_TARGET_512)]] void with512(const Words&... words) {
    loop(words...);
}
#undef MARNOTH_TARGET_512
#endif

/// Runs `loop`, an always-inlined function, as compiled for the widest registers that the processor has.
/// False, with nothing done, where those are the ones that every processor has.
template <auto loop, class... Words>
bool ranWide([[maybe_unused]] const Words&... words) {
#if defined(__x86_64__)
    if (has512()) {
        with512<loop>(words...);
        return true;
    }
    if (has256()) {
        with256<loop>(words...);
        return true;
    }
#endif
    return false;
}

/// The same, and in the registers that are certain where there are no wider ones.
template <auto loop, class... Words>
void withWidest(const Words&... words) {
    if (!ranWide<loop>(words...)) loop(words...);
}

}  // namespace marnoth
