#pragma once

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "dsp/MixKernels.h"

/// The one family of loops behind all mix kernels. Internal to MixKernels.cpp.
///
/// Every combination of formats, channels, mode and ramp is its own instance, so that no loop branches on its
/// mode. Source and destination never overlap: the loops are compiled under that promise.
namespace marnoth::mix {

/// A 24-bit sample as it lies in memory, lowest byte first.
struct Int24 {
    std::uint8_t bytes[3];
};
static_assert(sizeof(Int24) == 3);

enum class Mode { Add, Replace };

inline double widen(std::int16_t sample) {
    return sample;
}
inline double widen(Int24 sample) {
    return sample.bytes[0] | sample.bytes[1] << 8 | static_cast<std::int8_t>(sample.bytes[2]) * 65536;
}
inline double widen(float sample) {
    return sample;
}
inline double widen(double sample) {
    return sample;
}

template <class SourceSample, bool stereo>
struct Source {
    using Sample = SourceSample;
    static constexpr int channels = stereo ? 2 : 1;
};

template <class DestSample, bool stereo, Mode destMode>
struct Dest {
    using Sample = DestSample;
    static constexpr int channels = stereo ? 2 : 1;
    static constexpr Mode mode = destMode;

    /// The product is rounded to the destination's type before anything is added.
    template <class Product>
    static Sample over(Sample present, Product product) {
        const auto rounded = static_cast<Sample>(product);
        return mode == Mode::Add ? present + rounded : rounded;
    }
};

/// Held in f32, a gain gives the same products as in f64 if its value fits: the f64 product of two f32 values
/// is exact, so both ways round once.
template <class Gain, class Sample>
auto product(Sample sample, Gain gain) {
    if constexpr (sizeof(Gain) == sizeof(float)) {
        return sample * gain;
    } else {
        return widen(sample) * gain;
    }
}

/// Gains that stay.
template <class Value>
struct Constant {
    static constexpr bool ramped = false;
    Value leftGain;
    Value rightGain;

    Value left() const { return leftGain; }
    Value right() const { return rightGain; }
    void advance() {}
};

/// Numbers of both sides, left first, that are added as one.
using Sides [[gnu::vector_size(16)]] = double;

/// Gains that run along a parabola.
struct Ramp {
    static constexpr bool ramped = true;
    Sides value;
    Sides step;
    Sides curve;

    double left() const { return value[0]; }
    double right() const { return value[1]; }
    void advance() {
        value += step;
        step += curve;
    }
};

template <class From, class To, class Gains>
[[gnu::always_inline]] inline void mixFrame(typename To::Sample* dest, const typename From::Sample* src,
                                            Gains& gains) {
    const auto left = product(src[0], gains.left());
    // Both products come before either is stored, so that they can be taken as one vector.
    const auto right = product(src[From::channels - 1], gains.right());
    if constexpr (To::channels == 2) {
        const auto mixedLeft = To::over(dest[0], left);
        const auto mixedRight = To::over(dest[1], right);
        dest[0] = mixedLeft;
        dest[1] = mixedRight;
    } else if constexpr (From::channels == 2) {
        dest[0] = To::over(dest[0], left + right);
    } else {
        dest[0] = To::over(dest[0], left);
    }
    gains.advance();
}

/// A round of `mixFrames` fills 64 bytes of the destination, a line of the cache.
template <class To>
inline constexpr int framesPerRound = 64 / (sizeof(typename To::Sample) * To::channels);

/// Asks for what the next round will touch. Only a hint: it may point behind the buffers.
template <class From, class To, class Gains>
[[gnu::always_inline]] inline void prefetchRound(typename To::Sample* dest,
                                                 const typename From::Sample* src) {
    if constexpr (To::mode == Mode::Add || Gains::ramped)
        __builtin_prefetch(reinterpret_cast<char*>(dest) + 64, 1);
    if constexpr (From::channels == 2) __builtin_prefetch(reinterpret_cast<const char*>(src) + 64);
}

template <class From, class To, class Gains>
[[gnu::always_inline]] inline Gains mixFrames(typename To::Sample* __restrict dest,
                                              const typename From::Sample* __restrict src, std::int32_t count,
                                              Gains gains) {
    constexpr int round = framesPerRound<To>;
    while (count > 0) {
        prefetchRound<From, To, Gains>(dest, src);
        const int frames = std::min(count, round);
#pragma GCC unroll 1
#pragma GCC ivdep
        for (int i = 0; i < frames; ++i) {
            mixFrame<From, To>(dest + i * To::channels, src + i * From::channels, gains);
        }
        count -= frames;
        dest += frames * To::channels;
        src += frames * From::channels;
    }
    return gains;
}

/// Gives the gains behind the last frame.
template <class From, class To, class Gains>
[[gnu::always_inline]] inline Gains mixInRounds(const MixArgs& args, Gains gains) {
    return mixFrames<From, To>(static_cast<typename To::Sample*>(args.dest),
                               static_cast<const typename From::Sample*>(args.src), args.count, gains);
}

template <class From, class To>
void mixRamped(MixArgs* args) {
    const Ramp start{{args->gainL, args->gainR}, {args->stepL, args->stepR}, {args->curveL, args->curveR}};
    const Ramp end = mixInRounds<From, To>(*args, start);
    args->gainL = end.left();
    if constexpr (From::channels == 2 || To::channels == 2) args->gainR = end.right();
}

template <class From, class To>
[[gnu::always_inline]] inline void mixSteady(const MixArgs& args) {
    mixInRounds<From, To>(args, Constant<double>{args.gainL, args.gainR});
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

/// Constant gains over samples of the destination's own type, without rounds: nothing stands in the
/// vectoriser's way, and a straight run needs no hints.
template <class From, class To>
[[gnu::always_inline]] inline void mixStraight(const MixArgs& args) {
    using Sample = typename To::Sample;
    Sample* __restrict dest = static_cast<Sample*>(args.dest);
    const Sample* __restrict src = static_cast<const Sample*>(args.src);
    Constant<Sample> gains{static_cast<Sample>(args.gainL), static_cast<Sample>(args.gainR)};
    if constexpr (To::channels > From::channels && To::mode == Mode::Add) {
        return addToBoth(dest, src, args.count, gains);
    }
    const std::int32_t count = args.count;
#pragma GCC unroll 4
#pragma GCC ivdep
    for (std::int32_t i = 0; i < count; ++i) {
        mixFrame<From, To>(dest + std::int64_t{i} * To::channels, src + std::int64_t{i} * From::channels,
                           gains);
    }
}

using ConstantMix = void (*)(const MixArgs&);

#if defined(__x86_64__) && !defined(_WIN32)
#define MARNOTH_WIDE_MIX 1
/// The same loop for wider registers. Products and sums are those of the narrow one, sample by sample.
template <ConstantMix mix>
[[gnu::target("avx2")]] void with256(const MixArgs& args) {
    mix(args);
}
template <ConstantMix mix>
[[gnu::target("avx512f,avx512vl,avx512dq,prefer-vector-width=512")]] void with512(const MixArgs& args) {
    mix(args);
}
#endif

template <ConstantMix mix>
void withWidest(const MixArgs& args) {
#ifdef MARNOTH_WIDE_MIX
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
        __builtin_cpu_supports("avx512dq")) {
        return with512<mix>(args);
    }
    if (__builtin_cpu_supports("avx2")) return with256<mix>(args);
#endif
    mix(args);
}

/// Whether the gain's value survives in the sample's type, so that nothing is lost by computing in it.
template <class Sample>
bool fits(double gain) {
    return static_cast<double>(static_cast<Sample>(gain)) == gain;
}

template <class From, class To>
void mixConstant(MixArgs* args) {
    using Sample = typename To::Sample;
    constexpr bool sameType = std::is_same_v<typename From::Sample, Sample>;
    constexpr bool sums = From::channels == 2 && To::channels == 1;
    if constexpr (sameType && !sums) {
        if (fits<Sample>(args->gainL) && fits<Sample>(args->gainR))
            return withWidest<mixStraight<From, To>>(*args);
    }
    withWidest<mixSteady<From, To>>(*args);
}

/// Picks the instance; a template per entry keeps the tables free of code at run time.
template <class From, class To, bool ramped>
constexpr MixKernel kernel() {
    if constexpr (ramped) {
        return mixRamped<From, To>;
    } else {
        return mixConstant<From, To>;
    }
}

}  // namespace marnoth::mix
