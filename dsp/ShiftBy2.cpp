#if defined(__x86_64__)

#include <emmintrin.h>

#include "dsp/ShiftLoop.h"

namespace marnoth::shift {
namespace {

/// Two frames in the vectors that every 64-bit x86 processor has. Singles are the lower half of theirs.
struct By2 {
    static constexpr int count = 2;
    using Singles = __m128;
    using Pairs = __m128;
    template <int channels>
    using Values = __m128;

    template <int channels>
    static __m128 load(const float* from) {
        if constexpr (channels == 2) return _mm_loadu_ps(from);
        return _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(from)));
    }
    template <int channels>
    static void store(float* to, __m128 values) {
        if constexpr (channels == 2) {
            _mm_storeu_ps(to, values);
        } else {
            _mm_storel_pi(reinterpret_cast<__m64*>(to), values);
        }
    }

    static Pairs spread(Singles values) { return _mm_unpacklo_ps(values, values); }
    static Pairs alternating(float left, float right) { return _mm_setr_ps(left, right, left, right); }
    static Singles sidesSummed(Pairs pairs) {
        const __m128 sums = _mm_shuffle_ps(pairs, pairs, _MM_SHUFFLE(2, 3, 0, 1)) + pairs;
        return _mm_shuffle_ps(sums, sums, _MM_SHUFFLE(2, 0, 2, 0));
    }
    static Singles distances(const std::int32_t* frames, std::int32_t start) {
        const __m128i numbers = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(frames));
        return _mm_cvtepi32_ps(_mm_sub_epi32(numbers, _mm_set1_epi32(start)));
    }

    template <int channels>
    static void gather(const float* samples, const std::int32_t* frames, __m128& here, __m128& next) {
        const __m128 first = load<channels>(samples + std::int64_t{frames[0]} * channels);
        const __m128 second = load<channels>(samples + std::int64_t{frames[1]} * channels);
        here = channels == 2 ? _mm_movelh_ps(first, second) : _mm_unpacklo_ps(first, second);
        next = _mm_movehl_ps(channels == 2 ? second : here, channels == 2 ? first : here);
    }
};

}  // namespace

std::int32_t renderBy2(const Run& run) {
    return renderIn<By2>(run);
}

}  // namespace marnoth::shift

#endif
