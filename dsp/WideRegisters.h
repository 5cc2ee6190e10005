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

}  // namespace marnoth
