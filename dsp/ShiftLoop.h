#pragma once

#include <cstdint>
#include <type_traits>

#include "dsp/ShiftRun.h"

/// The transposed render in vectors, once for all widths. Internal to the sources that bring the vectors.
///
/// Each such source is compiled for its own processors, so nothing that another source could share may be
/// made here: everything is a member of a template of the width.
namespace marnoth::shift {

/// `Lanes` has, for `count` frames at once: `Singles`, a vector with one value per frame, and `Pairs` with
/// two; `load` and `store` of both, by the second's channels; `spread`, which gives both sides of a frame its
/// single value; `sidesSummed`, right plus left of each frame; `alternating`, the pairs of two numbers; and
/// `gather`, which brings frames of the wave and those behind them.
template <class Lanes, int sourceChannels, int destChannels>
class Loop {
public:
    static std::int32_t render(const Run& run) {
        const auto frames = static_cast<std::int32_t>(run.end - run.begin) / Lanes::count * Lanes::count;
        const Loop loop(run);
        for (std::int32_t done = 0; done < frames; done += kRound) {
            const std::int32_t left = frames - done;
            loop.renderRound(done, left < kRound ? left : kRound);
        }
        return frames;
    }

private:
    using Singles = typename Lanes::Singles;
    using Pairs = typename Lanes::Pairs;
    template <int channels>
    using Values = typename Lanes::template Values<channels>;

    /// Frames whose places are prepared together: in the loop over them the numbers of the frames come back
    /// from memory, which is cheaper than taking a vector apart.
    static constexpr std::int32_t kRound = 64;

    struct Places {
        std::int32_t frame[kRound];  ///< of the wave
        float fraction[kRound];
    };

    explicit Loop(const Run& run) : run(run), gains(Lanes::alternating(run.gain.left, run.gain.right)) {}

    void prepare(Places& places, std::int32_t done, std::int32_t frames) const {
        const auto first = static_cast<double>(run.begin + done);
        const auto base = static_cast<std::int32_t>(run.base);
        const double speed = run.speed;
        for (std::int32_t i = 0; i < frames; ++i) {
            const double place = (first + i) * speed;
            const auto frame = static_cast<std::int32_t>(place);
            places.frame[i] = frame + base;
            places.fraction[i] = static_cast<float>(place - frame);
        }
    }

    void renderRound(std::int32_t done, std::int32_t frames) const {
        Places places;
        prepare(places, done, frames);
        float* dest = run.dest + std::int64_t{done} * destChannels;
        if (run.fade.length > 0) {
            addFading(places, dest, frames);
        } else {
            addPlain(places, dest, frames);
        }
    }

    void addPlain(const Places& places, float* dest, std::int32_t frames) const {
        const float* const samples = run.wave.samples;
        for (std::int32_t i = 0; i < frames; i += Lanes::count, dest += Lanes::count * destChannels)
            add(dest, read(samples, places.frame + i, fractions(places, i)));
    }

    void addFading(const Places& places, float* dest, std::int32_t frames) const {
        const float* const out = run.wave.samples;
        const float* const in = out + run.fade.offset * sourceChannels;
        const auto start = static_cast<std::int32_t>(run.base + run.fade.start);
        const auto length = static_cast<float>(run.fade.length);
        for (std::int32_t i = 0; i < frames; i += Lanes::count, dest += Lanes::count * destChannels) {
            const Singles x = Lanes::distances(places.frame + i, start) / length;
            const Values<sourceChannels> falling = spread(1.0f - x * x);
            const Values<sourceChannels> rising = spread(1.0f - (1.0f - x) * (1.0f - x));
            const Values<sourceChannels> fraction = fractions(places, i);
            add(dest, read(out, places.frame + i, fraction) * falling +
                          read(in, places.frame + i, fraction) * rising);
        }
    }

    static Values<sourceChannels> fractions(const Places& places, std::int32_t i) {
        return spread(Lanes::template load<1>(places.fraction + i));
    }

    static Values<sourceChannels> spread(Singles values) {
        if constexpr (sourceChannels == 2) {
            return Lanes::spread(values);
        } else {
            return values;
        }
    }

    static Values<sourceChannels> read(const float* samples, const std::int32_t* frames,
                                       Values<sourceChannels> fraction) {
        Values<sourceChannels> here, next;
        Lanes::template gather<sourceChannels>(samples, frames, here, next);
        return fraction * next + (1.0f - fraction) * here;
    }

    void add(float* dest, Values<sourceChannels> value) const {
        if constexpr (destChannels == 2 && sourceChannels == 2) {
            put(dest, value * gains);
        } else if constexpr (destChannels == 2) {
            put(dest, Lanes::spread(value) * gains);
        } else if constexpr (sourceChannels == 2) {
            put(dest, Lanes::sidesSummed(value * gains) * 0.5f);
        } else {
            put(dest, value * run.gain.left);
        }
    }

    static void put(float* dest, Values<destChannels> value) {
        Lanes::template store<destChannels>(dest, Lanes::template load<destChannels>(dest) + value);
    }

    const Run& run;
    Pairs gains;
};

template <class Lanes>
std::int32_t renderIn(const Run& run) {
    const bool stereoDest = run.destChannels == 2;
    if (run.wave.channels == 2)
        return stereoDest ? Loop<Lanes, 2, 2>::render(run) : Loop<Lanes, 2, 1>::render(run);
    return stereoDest ? Loop<Lanes, 1, 2>::render(run) : Loop<Lanes, 1, 1>::render(run);
}

}  // namespace marnoth::shift
