#pragma once

#include <algorithm>
#include <cstdint>

#include "dsp/FastMix.h"
#include "dsp/MixFrame.h"
#include "dsp/MixKernels.h"
#include "dsp/WideRegisters.h"

/// The one family of loops behind all mix kernels. Internal to MixKernels.cpp.
///
/// Every combination of formats, channels, mode and ramp is its own instance, so that no loop branches on its
/// mode. Source and destination never overlap: the loops are compiled under that promise.
namespace marnoth::mix {

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

/// Whether the gain's value survives in the sample's type, so that nothing is lost by computing in it.
template <class Sample>
bool fits(double gain) {
    return static_cast<double>(static_cast<Sample>(gain)) == gain;
}

template <class From, class To>
void mixConstant(MixArgs* args) {
    if constexpr (hasFastForm<From, To>) {
        using Sample = typename To::Sample;
        if (fastFormTaken<Sample>(*args)) return mixFast<From, To>(*args);
        if (fits<Sample>(args->gainL) && fits<Sample>(args->gainR))
            return mixStraight<From, To>(*args, gainsIn<Sample>(*args));
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
