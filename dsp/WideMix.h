#pragma once

#include "dsp/WideRegisters.h"

/// Loops of constant gains in the widest registers that the processor has. Internal to MixKernels.cpp.
namespace marnoth::mix {

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

/// Runs `loop`, an always-inlined function, as compiled for wide registers. False, with nothing done, where
/// there are none.
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

template <auto loop, class... Words>
void withWidest(const Words&... words) {
    if (!ranWide<loop>(words...)) loop(words...);
}

}  // namespace marnoth::mix
