#pragma once

#include <cstdint>
#include <type_traits>

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

#include "dsp/CpuFeatures.h"
#include "dsp/MixFrame.h"
#include "dsp/MixKernels.h"
#include "dsp/WideRegisters.h"

/// The fast bodies of the constant-gain kernels: source, gain and destination in one type. Internal to
/// MixKernels.cpp.
namespace marnoth::mix {

template <class From, class To>
inline constexpr bool hasFastForm =
    std::is_same_v<typename From::Sample, typename To::Sample>&& From::channels <= To::channels;

template <class Sample>
Constant<Sample> gainsIn(const MixArgs& args) {
    return {static_cast<Sample>(args.gainL), static_cast<Sample>(args.gainR)};
}

/// Adds one channel to two: whole vectors of products come first, or else the compiler takes the destination
/// apart by channels and puts it together again.
template <class Sample>
[[gnu::always_inline]] inline void addToBoth(Sample* __restrict dest, const Sample* __restrict src,
                                             std::int32_t count, Constant<Sample> gains) {
    constexpr int round = 64 / sizeof(Sample);
    for (; count >= round; count -= round) {
        Sample products[2 * round];
#pragma GCC unroll 32
        for (int i = 0; i < round; ++i) {
            products[2 * i] = src[i] * gains.left();
            products[2 * i + 1] = src[i] * gains.right();
        }
#pragma GCC unroll 32
        for (int i = 0; i < 2 * round; ++i) dest[i] += products[i];
        dest += 2 * round;
        src += round;
    }
    for (std::int32_t i = 0; i < count; ++i) {
        dest[2 * i] += src[i] * gains.left();
        dest[2 * i + 1] += src[i] * gains.right();
    }
}

/// The run as the compiler takes it, without rounds: nothing stands in the vectoriser's way, and a straight
/// run needs no hints.
template <class From, class To, class Gains>
[[gnu::always_inline]] inline void mixCompiled(const MixArgs& args, const Gains& gains) {
    using Sample = typename To::Sample;
    Sample* __restrict dest = static_cast<Sample*>(args.dest);
    const Sample* __restrict src = static_cast<const Sample*>(args.src);
    if constexpr (To::channels > From::channels && To::mode == Mode::Add) {
        return addToBoth(dest, src, args.count, gains);
    }
    Gains steady = gains;
    const std::int32_t count = args.count;
#pragma GCC unroll 4
#pragma GCC ivdep
    for (std::int32_t i = 0; i < count; ++i) {
        mixFrame<From, To>(dest + std::int64_t{i} * To::channels, src + std::int64_t{i} * From::channels,
                           steady);
    }
}

#if defined(__x86_64__)

/// The vectors that every 64-bit x86 processor has. Loads and stores take any address: on one that is aligned
/// they cost the same as those that insist on it.
template <class Sample>
struct Lanes;

template <>
struct Lanes<float> {
    using Vector = __m128;
    static constexpr int count = 4;

    static Vector load(const float* from) { return _mm_loadu_ps(from); }
    static void store(float* to, Vector value) { _mm_storeu_ps(to, value); }
    static Vector product(Vector a, Vector b) { return _mm_mul_ps(a, b); }
    static Vector sum(Vector a, Vector b) { return _mm_add_ps(a, b); }
    static Vector alternating(float left, float right) { return _mm_setr_ps(left, right, left, right); }
    static Vector lowPairs(Vector left, Vector right) { return _mm_unpacklo_ps(left, right); }
    static Vector highPairs(Vector left, Vector right) { return _mm_unpackhi_ps(left, right); }
};

template <>
struct Lanes<double> {
    using Vector = __m128d;
    static constexpr int count = 2;

    static Vector load(const double* from) { return _mm_loadu_pd(from); }
    static void store(double* to, Vector value) { _mm_storeu_pd(to, value); }
    static Vector product(Vector a, Vector b) { return _mm_mul_pd(a, b); }
    static Vector sum(Vector a, Vector b) { return _mm_add_pd(a, b); }
    static Vector alternating(double left, double right) { return _mm_setr_pd(left, right); }
    static Vector lowPairs(Vector left, Vector right) { return _mm_unpacklo_pd(left, right); }
    static Vector highPairs(Vector left, Vector right) { return _mm_unpackhi_pd(left, right); }
};

/// Asks for the 32 bytes behind the ones at `place`. Only a hint: they may lie behind the buffer.
inline void prefetchNext(const void* place) {
    _mm_prefetch(static_cast<const char*>(place) + 32, _MM_HINT_T0);
}

/// Gains of samples that alternate between the sides.
template <class Sample>
struct VectorGain {
    typename Lanes<Sample>::Vector value;

    explicit VectorGain(Constant<Sample> gains)
        : value(Lanes<Sample>::alternating(gains.left(), gains.right())) {}
    auto over(typename Lanes<Sample>::Vector samples) const { return Lanes<Sample>::product(samples, value); }
};

template <class Sample>
struct VectorUnity {
    explicit VectorUnity(Unity) {}
    auto over(typename Lanes<Sample>::Vector samples) const { return samples; }
};

template <class To>
void putVector(typename To::Sample* dest, typename Lanes<typename To::Sample>::Vector mixed) {
    using L = Lanes<typename To::Sample>;
    if constexpr (To::mode == Mode::Add) mixed = L::sum(L::load(dest), mixed);
    L::store(dest, mixed);
}

/// As many channels in as out: an array of samples whose gains alternate. In mono both gains are the same.
template <class To, class Gains>
void mixSamples(typename To::Sample* dest, const typename To::Sample* src, std::int64_t samples,
                const Gains& gains) {
    using Sample = typename To::Sample;
    using L = Lanes<Sample>;
    using Gain = std::conditional_t<std::is_same_v<Gains, Unity>, VectorUnity<Sample>, VectorGain<Sample>>;
    const Gain gain(gains);
    for (; samples >= 2 * L::count; samples -= 2 * L::count) {
        prefetchNext(dest);
        prefetchNext(src);
        putVector<To>(dest, gain.over(L::load(src)));
        putVector<To>(dest + L::count, gain.over(L::load(src + L::count)));
        dest += 2 * L::count;
        src += 2 * L::count;
    }
    if (samples >= L::count) {
        putVector<To>(dest, gain.over(L::load(src)));
        dest += L::count;
        src += L::count;
        samples -= L::count;
    }
    for (std::int64_t i = 0; i < samples; ++i) {
        dest[i] = To::over(dest[i], product(src[i], i % 2 == 0 ? gains.left() : gains.right()));
    }
}

template <class From, class To>
void mixToBoth(typename To::Sample* dest, const typename To::Sample* src, std::int32_t count,
               Constant<typename To::Sample> gains) {
    using L = Lanes<typename To::Sample>;
    const auto leftGain = L::alternating(gains.left(), gains.left());
    const auto rightGain = L::alternating(gains.right(), gains.right());
    for (; count >= L::count; count -= L::count) {
        prefetchNext(dest);
        prefetchNext(src);
        const auto left = L::product(L::load(src), leftGain);
        const auto right = L::product(L::load(src), rightGain);
        putVector<To>(dest, L::lowPairs(left, right));
        putVector<To>(dest + L::count, L::highPairs(left, right));
        dest += 2 * L::count;
        src += L::count;
    }
    for (std::int32_t i = 0; i < count; ++i) mixFrame<From, To>(dest + 2 * i, src + i, gains);
}

/// The run in the vectors that are certain.
template <class From, class To, class Gains>
void mixVectors(const MixArgs& args, Gains gains) {
    using Sample = typename To::Sample;
    auto* dest = static_cast<Sample*>(args.dest);
    const auto* src = static_cast<const Sample*>(args.src);
    if constexpr (To::channels > From::channels) {
        mixToBoth<From, To>(dest, src, args.count, gains);
    } else {
        if constexpr (To::channels == 1 && std::is_same_v<Gains, Constant<Sample>>)
            gains.rightGain = gains.leftGain;
        mixSamples<To>(dest, src, std::int64_t{args.count} * To::channels, gains);
    }
}

#endif

/// The same samples, bit for bit, in whatever vectors there are.
template <class From, class To, class Gains>
void mixStraight(const MixArgs& args, const Gains& gains) {
#if defined(__x86_64__)
    if (!ranWide<mixCompiled<From, To, Gains>>(args, gains)) mixVectors<From, To>(args, gains);
#else
    mixCompiled<From, To>(args, gains);
#endif
}

inline bool isAligned(const void* place) {
    return reinterpret_cast<std::uintptr_t>(place) % 16 == 0;
}

template <class Sample>
bool fastFormTaken(const MixArgs& args) {
    return GetFastMixEnabled() != 0 && (sizeof(Sample) == sizeof(float) ? HasSse() : HasSse2()) != 0 &&
           isAligned(args.dest) && isAligned(args.src) && args.count > 0;
}

/// Gains are rounded to the samples' type, and denormals are gone from this thread from here on.
template <class From, class To>
void mixFast(const MixArgs& args) {
    const auto gains = gainsIn<typename To::Sample>(args);
    flushDenormals();
    if constexpr (To::mode == Mode::Add && From::channels == To::channels) {
        if (gains.leftGain == 1 && gains.rightGain == 1) return mixStraight<From, To>(args, Unity{});
    }
    mixStraight<From, To>(args, gains);
}

}  // namespace marnoth::mix
