#pragma once

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
    static void put(Sample& place, Product product) {
        const auto rounded = static_cast<Sample>(product);
        place = mode == Mode::Add ? place + rounded : rounded;
    }
};

/// A gain that stays. Held in f32 it gives the same products as in f64 if its value fits: the f64 product of
/// two f32 values is exact, so both ways round once.
template <class Value>
struct Constant {
    Value value;

    template <class Sample>
    auto product(Sample sample) const {
        if constexpr (sizeof(Value) == sizeof(float)) {
            return sample * value;
        } else {
            return widen(sample) * value;
        }
    }
    void advance() {}
};

/// A gain that runs along a parabola.
struct Ramp {
    double value;
    double step;
    double curve;

    template <class Sample>
    double product(Sample sample) const {
        return widen(sample) * value;
    }
    void advance() {
        value += step;
        step += curve;
    }
};

template <class From, class To, class Gain>
[[gnu::always_inline]] inline void mixFrame(typename To::Sample* dest, const typename From::Sample* src,
                                            Gain& left, Gain& right) {
    if constexpr (From::channels == 2 && To::channels == 2) {
        To::put(dest[0], left.product(src[0]));
        To::put(dest[1], right.product(src[1]));
    } else if constexpr (From::channels == 2) {
        To::put(dest[0], left.product(src[0]) + right.product(src[1]));
    } else if constexpr (To::channels == 2) {
        To::put(dest[0], left.product(src[0]));
        To::put(dest[1], right.product(src[0]));
    } else {
        To::put(dest[0], left.product(src[0]));
    }
    left.advance();
    right.advance();
}

/// A round of `mixFrames` fills 64 bytes of the destination, a line of the cache.
template <class To>
inline constexpr int framesPerRound = 64 / (sizeof(typename To::Sample) * To::channels);

/// Asks for what the next round will touch. Only a hint: it may point behind the buffers.
template <class From, class To, class Gain>
[[gnu::always_inline]] inline void prefetchRound(typename To::Sample* dest,
                                                 const typename From::Sample* src) {
    constexpr bool ramped = std::is_same_v<Gain, Ramp>;
    if constexpr (To::mode == Mode::Add || ramped) __builtin_prefetch(reinterpret_cast<char*>(dest) + 64, 1);
    if constexpr (From::channels == 2) __builtin_prefetch(reinterpret_cast<const char*>(src) + 64);
}

template <class From, class To, class Gain>
[[gnu::always_inline]] inline void mixFrames(typename To::Sample* __restrict dest,
                                             const typename From::Sample* __restrict src, std::int32_t count,
                                             Gain& left, Gain& right) {
    constexpr int round = framesPerRound<To>;
    for (; count >= round; count -= round) {
        prefetchRound<From, To, Gain>(dest, src);
#pragma GCC unroll 1
#pragma GCC ivdep
        for (int i = 0; i < round; ++i) {
            mixFrame<From, To>(dest + i * To::channels, src + i * From::channels, left, right);
        }
        dest += round * To::channels;
        src += round * From::channels;
    }
#pragma GCC ivdep
    for (std::int32_t i = 0; i < count; ++i) {
        mixFrame<From, To>(dest + i * To::channels, src + i * From::channels, left, right);
    }
}

template <class From, class To>
void mixRamped(MixArgs* args) {
    Ramp left{args->gainL, args->stepL, args->curveL};
    Ramp right{args->gainR, args->stepR, args->curveR};
    mixFrames<From, To>(static_cast<typename To::Sample*>(args->dest),
                        static_cast<const typename From::Sample*>(args->src), args->count, left, right);
    args->gainL = left.value;
    if constexpr (From::channels == 2 || To::channels == 2) args->gainR = right.value;
}

/// Constant gains over samples of the destination's own type, without rounds: nothing stands in the
/// vectoriser's way, and a straight run needs no hints.
template <class From, class To>
[[gnu::always_inline]] inline void mixStraight(const MixArgs& args) {
    using Sample = typename To::Sample;
    Sample* __restrict dest = static_cast<Sample*>(args.dest);
    const Sample* __restrict src = static_cast<const Sample*>(args.src);
    Constant<Sample> left{static_cast<Sample>(args.gainL)};
    Constant<Sample> right{static_cast<Sample>(args.gainR)};
    const std::int32_t count = args.count;
#pragma GCC unroll 4
#pragma GCC ivdep
    for (std::int32_t i = 0; i < count; ++i) {
        mixFrame<From, To>(dest + std::int64_t{i} * To::channels, src + std::int64_t{i} * From::channels,
                           left, right);
    }
}

#if defined(__x86_64__) && !defined(_WIN32)
#define MARNOTH_WIDE_MIX 1
/// The same loop for wider registers. Products and sums are those of the narrow one, sample by sample.
template <class From, class To>
[[gnu::target("avx2")]] void mixStraight256(const MixArgs& args) {
    mixStraight<From, To>(args);
}
template <class From, class To>
[[gnu::target("avx512f,avx512vl,avx512dq,prefer-vector-width=512")]] void mixStraight512(
    const MixArgs& args) {
    mixStraight<From, To>(args);
}
#endif

template <class From, class To>
void mixStraightWidest(const MixArgs& args) {
#ifdef MARNOTH_WIDE_MIX
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
        __builtin_cpu_supports("avx512dq")) {
        return mixStraight512<From, To>(args);
    }
    if (__builtin_cpu_supports("avx2")) return mixStraight256<From, To>(args);
#endif
    mixStraight<From, To>(args);
}

template <class From, class To>
void mixInRounds(const MixArgs& args) {
    Constant<double> left{args.gainL};
    Constant<double> right{args.gainR};
    mixFrames<From, To>(static_cast<typename To::Sample*>(args.dest),
                        static_cast<const typename From::Sample*>(args.src), args.count, left, right);
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
        if (fits<Sample>(args->gainL) && fits<Sample>(args->gainR)) return mixStraightWidest<From, To>(*args);
    }
    mixInRounds<From, To>(*args);
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
