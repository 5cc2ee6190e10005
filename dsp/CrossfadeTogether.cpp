#include <algorithm>
#include <cstddef>

#include "dsp/Crossfade.h"
#include "dsp/CrossfadeGains.h"

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

Gains gainsOf(const FadeState& state) {
    return {_mm256_loadu_pd(state.gain.data()), _mm256_loadu_pd(state.step.data()),
            _mm256_loadu_pd(state.curve.data())};
}

FadeState stateOf(const Gains& gains) {
    FadeState state;
    _mm256_storeu_pd(state.gain.data(), gains.value);
    _mm256_storeu_pd(state.step.data(), gains.step);
    _mm256_storeu_pd(state.curve.data(), gains.curve);
    return state;
}

/// Where the gains are written down: those of two frames go to each side at once.
struct Record {
    double* out;
    double* in;
};

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
void addTwo(float* dest, const float* out, const float* in, Gains& gains, const Record& record) {
    const __m256d first = gains.next();
    const __m256d second = gains.next();
    const __m256d outGains = _mm256_permute2f128_pd(first, second, 0x20);
    const __m256d inGains = _mm256_permute2f128_pd(first, second, 0x31);
    _mm256_storeu_pd(record.out, outGains);
    _mm256_storeu_pd(record.in, inGains);
    const __m128 fallen = _mm256_cvtpd_ps(loadTwo<channels>(out) * outGains);
    const __m128 risen = _mm256_cvtpd_ps(loadTwo<channels>(in) * inGains);
    _mm_storeu_ps(dest, (_mm_loadu_ps(dest) + fallen) + risen);
}

template <int channels>
void addOne(float* dest, const float* out, const float* in, Gains& gains, const Record& record) {
    const __m256d present = gains.next();
    const __m128d outGains = _mm256_castpd256_pd128(present);
    const __m128d inGains = _mm256_extractf128_pd(present, 1);
    _mm_storeu_pd(record.out, outGains);
    _mm_storeu_pd(record.in, inGains);
    const __m128 fallen = _mm_cvtpd_ps(loadOne<channels>(out) * outGains);
    const __m128 risen = _mm_cvtpd_ps(loadOne<channels>(in) * inGains);
    const __m128 before = _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(dest)));
    _mm_storel_pi(reinterpret_cast<__m64*>(dest), (before + fallen) + risen);
}

/// Adds the frames while it works the ramp out.
template <int channels>
void addAll(CrossfadeGains::Ramp& ramp, float* dest, const float* out, const float* in) {
    Gains gains = gainsOf(ramp.begin);
    Record record{ramp.out.data(), ramp.in.data()};
    std::int32_t left = ramp.frames;
    constexpr auto two = std::ptrdiff_t{2} * channels;
    for (; left >= 2; left -= 2, dest += 4, out += two, in += two, record.out += 4, record.in += 4)
        addTwo<channels>(dest, out, in, gains, record);
    if (left > 0) addOne<channels>(dest, out, in, gains, record);
    ramp.end = stateOf(gains);
}

}  // namespace

void crossfadeAndRecord(CrossfadeGains::Ramp& ramp, float* dest, const float* out, const float* in,
                        std::int32_t channels) {
    channels == 2 ? addAll<2>(ramp, dest, out, in) : addAll<1>(ramp, dest, out, in);
}

}  // namespace marnoth

#endif
