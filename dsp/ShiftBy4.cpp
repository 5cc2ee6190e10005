#if defined(__x86_64__)

#include <immintrin.h>

#include "dsp/ShiftLoop.h"

namespace marnoth::shift {
namespace {

/// Four frames with AVX2.
struct By4 {
    static constexpr int count = 4;
    using Singles = __m128;
    using Pairs = __m256;
    template <int channels>
    using Values = std::conditional_t<channels == 2, Pairs, Singles>;

    template <int channels>
    static Values<channels> load(const float* from) {
        if constexpr (channels == 2) {
            return _mm256_loadu_ps(from);
        } else {
            return _mm_loadu_ps(from);
        }
    }
    template <int channels>
    static void store(float* to, Values<channels> values) {
        if constexpr (channels == 2) {
            _mm256_storeu_ps(to, values);
        } else {
            _mm_storeu_ps(to, values);
        }
    }

    static Pairs spread(Singles values) {
        const __m256i places = _mm256_setr_epi32(0, 0, 1, 1, 2, 2, 3, 3);
        return _mm256_permutevar8x32_ps(_mm256_castps128_ps256(values), places);
    }
    static Pairs alternating(float left, float right) {
        return _mm256_setr_ps(left, right, left, right, left, right, left, right);
    }
    static Singles sidesSummed(Pairs pairs) {
        const __m128 low = _mm256_castps256_ps128(pairs);
        const __m128 high = _mm256_extractf128_ps(pairs, 1);
        return _mm_shuffle_ps(low, high, _MM_SHUFFLE(3, 1, 3, 1)) +
               _mm_shuffle_ps(low, high, _MM_SHUFFLE(2, 0, 2, 0));
    }
    static Singles distances(const std::int32_t* frames, std::int32_t start) {
        const __m128i numbers = _mm_loadu_si128(reinterpret_cast<const __m128i*>(frames));
        return _mm_cvtepi32_ps(_mm_sub_epi32(numbers, _mm_set1_epi32(start)));
    }

    template <int channels>
    static void gather(const float* samples, const std::int32_t* frames, Values<channels>& here,
                       Values<channels>& next) {
        const auto at = [&](int i) { return samples + std::int64_t{frames[i]} * channels; };
        if constexpr (channels == 2) {
            const __m256d even = _mm256_castps_pd(joined(at(0), at(2)));
            const __m256d odd = _mm256_castps_pd(joined(at(1), at(3)));
            here = _mm256_castpd_ps(_mm256_unpacklo_pd(even, odd));
            next = _mm256_castpd_ps(_mm256_unpackhi_pd(even, odd));
        } else {
            const __m128 low = joinedHalves(at(0), at(1));
            const __m128 high = joinedHalves(at(2), at(3));
            here = _mm_shuffle_ps(low, high, _MM_SHUFFLE(2, 0, 2, 0));
            next = _mm_shuffle_ps(low, high, _MM_SHUFFLE(3, 1, 3, 1));
        }
    }

    static __m256 joined(const float* low, const float* high) {
        return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(low)), _mm_loadu_ps(high), 1);
    }
    static __m128 joinedHalves(const float* low, const float* high) {
        const __m128 first = _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(low)));
        return _mm_loadh_pi(first, reinterpret_cast<const __m64*>(high));
    }
};

}  // namespace

std::int32_t renderBy4(const Run& run) {
    return renderIn<By4>(run);
}

}  // namespace marnoth::shift

#endif
