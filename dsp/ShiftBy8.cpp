#if defined(__x86_64__)

#include <immintrin.h>

#include "dsp/ShiftLoop.h"

namespace marnoth::shift {
namespace {

/// Eight frames with AVX-512. Frames are loaded one by one, for the instruction that gathers them is
/// slow on processors that have to guard what it leaves behind.
struct By8 {
    static constexpr int count = 8;
    using Singles = __m256;
    using Pairs = __m512;
    template <int channels>
    using Values = std::conditional_t<channels == 2, Pairs, Singles>;

    template <int channels>
    static Values<channels> load(const float* from) {
        if constexpr (channels == 2) {
            return _mm512_loadu_ps(from);
        } else {
            return _mm256_loadu_ps(from);
        }
    }
    template <int channels>
    static void store(float* to, Values<channels> values) {
        if constexpr (channels == 2) {
            _mm512_storeu_ps(to, values);
        } else {
            _mm256_storeu_ps(to, values);
        }
    }

    static Pairs spread(Singles values) {
        const __m512i places = _mm512_setr_epi32(0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6, 7, 7);
        return _mm512_permutexvar_ps(places, _mm512_castps256_ps512(values));
    }
    static Pairs alternating(float left, float right) {
        const __m512i places = _mm512_setr_epi32(0, 1, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1);
        return _mm512_permutexvar_ps(places, _mm512_castps128_ps512(_mm_setr_ps(left, right, 0, 0)));
    }
    static Singles sidesSummed(Pairs pairs) { return everySecond(pairs, 1) + everySecond(pairs, 0); }
    static Singles distances(const std::int32_t* frames, std::int32_t start) {
        const __m256i numbers = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(frames));
        return _mm256_cvtepi32_ps(_mm256_sub_epi32(numbers, _mm256_set1_epi32(start)));
    }

    template <int channels>
    static void gather(const float* samples, const std::int32_t* frames, Values<channels>& here,
                       Values<channels>& next) {
        const auto at = [&](int i) { return samples + std::int64_t{frames[i]} * channels; };
        if constexpr (channels == 2) {
            const __m512d even = _mm512_castps_pd(joined(at(0), at(2), at(4), at(6)));
            const __m512d odd = _mm512_castps_pd(joined(at(1), at(3), at(5), at(7)));
            here = _mm512_castpd_ps(_mm512_unpacklo_pd(even, odd));
            next = _mm512_castpd_ps(_mm512_unpackhi_pd(even, odd));
        } else {
            const __m256 low = joinedHalves(at(0), at(1), at(4), at(5));
            const __m256 high = joinedHalves(at(2), at(3), at(6), at(7));
            here = _mm256_shuffle_ps(low, high, _MM_SHUFFLE(2, 0, 2, 0));
            next = _mm256_shuffle_ps(low, high, _MM_SHUFFLE(3, 1, 3, 1));
        }
    }

    static __m256 everySecond(Pairs pairs, std::int32_t first) {
        const __m512i places = _mm512_setr_epi32(0, 2, 4, 6, 8, 10, 12, 14, 0, 0, 0, 0, 0, 0, 0, 0);
        return _mm512_castps512_ps256(
            _mm512_permutexvar_ps(_mm512_add_epi32(places, _mm512_set1_epi32(first)), pairs));
    }
    static __m512 joined(const float* a, const float* b, const float* c, const float* d) {
        __m512 all = _mm512_castps128_ps512(_mm_loadu_ps(a));
        all = _mm512_insertf32x4(all, _mm_loadu_ps(b), 1);
        all = _mm512_insertf32x4(all, _mm_loadu_ps(c), 2);
        return _mm512_insertf32x4(all, _mm_loadu_ps(d), 3);
    }
    static __m128 half(const float* low, const float* high) {
        const __m128 first = _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(low)));
        return _mm_loadh_pi(first, reinterpret_cast<const __m64*>(high));
    }
    static __m256 joinedHalves(const float* a, const float* b, const float* c, const float* d) {
        return _mm256_insertf128_ps(_mm256_castps128_ps256(half(a, b)), half(c, d), 1);
    }
};

}  // namespace

std::int32_t renderBy8(const Run& run) {
    return renderIn<By8>(run);
}

}  // namespace marnoth::shift

#endif
