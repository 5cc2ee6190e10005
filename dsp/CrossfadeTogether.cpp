#include <cstddef>

#include "dsp/Crossfade.h"

#if defined(__x86_64__)

#include <immintrin.h>

namespace marnoth {
namespace {

/// Gains of one frame: left and right of what fades out, then of what fades in.
struct Gains {
    __m256d value;
    __m256d step;
    __m256d curve;

    /// The present frame's gains; then the next frame is the present one.
    __m256d next() {
        const __m256d present = value;
        value = value + step;
        step = step + curve;
        return present;
    }
};

Gains gainsOf(const MixArgs& out, const MixArgs& in) {
    return {_mm256_setr_pd(out.gainL, out.gainR, in.gainL, in.gainR),
            _mm256_setr_pd(out.stepL, out.stepR, in.stepL, in.stepR),
            _mm256_setr_pd(out.curveL, out.curveR, in.curveL, in.curveR)};
}

/// Both sides of two frames.
template <int channels>
__m256d loadTwo(const float* src) {
    if constexpr (channels == 2) {
        return _mm256_cvtps_pd(_mm_loadu_ps(src));
    } else {
        const __m128 both = _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(src)));
        return _mm256_cvtps_pd(_mm_unpacklo_ps(both, both));
    }
}

/// Both sides of one frame.
template <int channels>
__m128d loadOne(const float* src) {
    return _mm_setr_pd(src[0], src[channels - 1]);
}

template <int channels>
void addTwo(float* dest, const float* out, const float* in, Gains& gains) {
    const __m256d first = gains.next();
    const __m256d second = gains.next();
    const __m256d outGains = _mm256_permute2f128_pd(first, second, 0x20);
    const __m256d inGains = _mm256_permute2f128_pd(first, second, 0x31);
    const __m128 fallen = _mm256_cvtpd_ps(loadTwo<channels>(out) * outGains);
    const __m128 risen = _mm256_cvtpd_ps(loadTwo<channels>(in) * inGains);
    _mm_storeu_ps(dest, (_mm_loadu_ps(dest) + fallen) + risen);
}

template <int channels>
void addOne(float* dest, const float* out, const float* in, Gains& gains) {
    const __m256d present = gains.next();
    const __m128 fallen = _mm_cvtpd_ps(loadOne<channels>(out) * _mm256_castpd256_pd128(present));
    const __m128 risen = _mm_cvtpd_ps(loadOne<channels>(in) * _mm256_extractf128_pd(present, 1));
    const __m128 before = _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(dest)));
    _mm_storel_pi(reinterpret_cast<__m64*>(dest), (before + fallen) + risen);
}

template <int channels>
void addAll(const MixArgs& outArgs, const MixArgs& inArgs) {
    Gains gains = gainsOf(outArgs, inArgs);
    auto* dest = static_cast<float*>(outArgs.dest);
    const auto* out = static_cast<const float*>(outArgs.src);
    const auto* in = static_cast<const float*>(inArgs.src);
    std::int32_t left = outArgs.count;
    constexpr auto two = std::ptrdiff_t{2} * channels;
    for (; left >= 2; left -= 2, dest += 4, out += two, in += two) addTwo<channels>(dest, out, in, gains);
    if (left > 0) addOne<channels>(dest, out, in, gains);
}

}  // namespace

void crossfadeTogether(const MixArgs& out, const MixArgs& in, std::int32_t sourceChannels) {
    sourceChannels == 2 ? addAll<2>(out, in) : addAll<1>(out, in);
}

}  // namespace marnoth

#endif
