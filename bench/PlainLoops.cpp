#include "bench/PlainLoops.h"

#include <array>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace marnoth::bench {
namespace {

struct Packed24 {
    std::uint8_t low, middle;
    std::int8_t high;
};

template <class Gain, class Sample>
Gain number(Sample sample) {
    if constexpr (std::is_same_v<Sample, Packed24>) {
        return sample.high * 65536 + sample.middle * 256 + sample.low;
    } else {
        return static_cast<Gain>(sample);
    }
}

template <class Gain, class To, class From, int in, int out, bool replace, bool ramped>
void plain(MixArgs* args) {
    To* __restrict dest = static_cast<To*>(args->dest);
    const From* __restrict src = static_cast<const From*>(args->src);
    Gain left = static_cast<Gain>(args->gainL), right = static_cast<Gain>(args->gainR);
    double stepL = args->stepL, stepR = args->stepR;
    const double curveL = args->curveL, curveR = args->curveR;
    for (int i = 0; i < args->count; ++i) {
        for (int side = 0; side < out; ++side) {
            Gain mixed = number<Gain>(src[i * in + (in == 2 ? side : 0)]) * (side == 0 ? left : right);
            if (in == 2 && out == 1) mixed += number<Gain>(src[i * in + 1]) * right;
            dest[i * out + side] = static_cast<To>(mixed) + (replace ? To{0} : dest[i * out + side]);
        }
        if constexpr (ramped) {
            left += stepL, stepL += curveL;
            if constexpr (in == 2 || out == 2) right += stepR, stepR += curveR;
        }
    }
    args->gainL = left;
    args->gainR = right;
}

/// Constant gains of float samples are multiplied in the samples' own type.
template <class Family, int row>
constexpr MixKernel loopOf() {
    constexpr bool ramped = (row & 1) != 0 || row == 12 || row == 24;
    constexpr bool sums = (row & 8) != 0 && (row & 2) == 0;
    using From = std::conditional_t<(row & 4) != 0, Family, std::int16_t>;
    using Gain = std::conditional_t<ramped || sums || (row & 4) == 0, double, Family>;
    return plain < Gain, Family, From, (row & 8) ? 2 : 1, (row & 2) ? 2 : 1, (row & 16) != 0, ramped > ;
}

template <class Family, int... rows>
constexpr std::array<MixKernel, 32> loops(std::integer_sequence<int, rows...>) {
    return {loopOf<Family, rows>()...};
}

template <class Family>
constexpr std::array<MixKernel, 4> loopsFrom24() {
    return {plain<double, Family, Packed24, 1, 1, false, false>,
            plain<double, Family, Packed24, 1, 1, false, true>,
            plain<double, Family, Packed24, 1, 1, true, false>,
            plain<double, Family, Packed24, 1, 1, true, true>};
}

}  // namespace

MixKernel plainLoop32(int row) {
    return loops<float>(std::make_integer_sequence<int, 32>())[row];
}
MixKernel plainLoop64(int row) {
    return loops<double>(std::make_integer_sequence<int, 32>())[row];
}
MixKernel plainLoop32From24(int row) {
    return loopsFrom24<float>()[row];
}
MixKernel plainLoop64From24(int row) {
    return loopsFrom24<double>()[row];
}

}  // namespace marnoth::bench
