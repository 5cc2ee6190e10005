#include "dsp/MixKernels.h"

#include <type_traits>

#include "dsp/MixKernelTemplate.h"

namespace marnoth {
namespace {

constexpr int kReplace = 16;
constexpr int kStereoSource = 8;
constexpr int kFloatSource = 4;
constexpr int kStereoDest = 2;
constexpr int kRamped = 1;

constexpr int kReplace24 = 2;
constexpr int kRamped24 = 1;

/// Two rows that ask for a constant gain are served by the ramped kernel of the row behind them, which gives
/// the same samples with steps of 0.
constexpr bool isRampedRow(int row) {
    return (row & kRamped) != 0 || row == 12 || row == 24;
}

constexpr mix::Mode modeOf(bool replace) {
    return replace ? mix::Mode::Replace : mix::Mode::Add;
}

/// The family is named by the type of its destination, which is also that of its float sources.
template <class Family, int row>
constexpr MixKernel kernelAt = mix::kernel<
    mix::Source<std::conditional_t<(row & kFloatSource) != 0, Family, std::int16_t>,
                (row & kStereoSource) != 0>,
    mix::Dest<Family, (row & kStereoDest) != 0, modeOf((row & kReplace) != 0)>, isRampedRow(row)>();

template <class Family, int row>
constexpr MixKernel kernel24At =
    mix::kernel<mix::Source<mix::Int24, false>, mix::Dest<Family, false, modeOf((row & kReplace24) != 0)>,
                (row & kRamped24) != 0>();

std::uint32_t rowOf(bool floatSource, std::uint32_t srcChannels, std::uint32_t dstChannels,
                    std::uint32_t replace, std::uint32_t ramped) {
    std::uint32_t row = replace != 0 ? kReplace : 0;
    if (srcChannels == 2) row += kStereoSource;
    if (floatSource) row += kFloatSource;
    if (dstChannels == 2) row += kStereoDest;
    if (ramped != 0) row += kRamped;
    return row;
}

}  // namespace

const std::uint16_t defaultMixBits = 32;

constinit const MixKernel mix32Table[32] = {
    kernelAt<float, 0>,  kernelAt<float, 1>,  kernelAt<float, 2>,  kernelAt<float, 3>,  kernelAt<float, 4>,
    kernelAt<float, 5>,  kernelAt<float, 6>,  kernelAt<float, 7>,  kernelAt<float, 8>,  kernelAt<float, 9>,
    kernelAt<float, 10>, kernelAt<float, 11>, kernelAt<float, 12>, kernelAt<float, 13>, kernelAt<float, 14>,
    kernelAt<float, 15>, kernelAt<float, 16>, kernelAt<float, 17>, kernelAt<float, 18>, kernelAt<float, 19>,
    kernelAt<float, 20>, kernelAt<float, 21>, kernelAt<float, 22>, kernelAt<float, 23>, kernelAt<float, 24>,
    kernelAt<float, 25>, kernelAt<float, 26>, kernelAt<float, 27>, kernelAt<float, 28>, kernelAt<float, 29>,
    kernelAt<float, 30>, kernelAt<float, 31>,
};

constinit const MixKernel mix64Table[32] = {
    kernelAt<double, 0>,  kernelAt<double, 1>,  kernelAt<double, 2>,  kernelAt<double, 3>,
    kernelAt<double, 4>,  kernelAt<double, 5>,  kernelAt<double, 6>,  kernelAt<double, 7>,
    kernelAt<double, 8>,  kernelAt<double, 9>,  kernelAt<double, 10>, kernelAt<double, 11>,
    kernelAt<double, 12>, kernelAt<double, 13>, kernelAt<double, 14>, kernelAt<double, 15>,
    kernelAt<double, 16>, kernelAt<double, 17>, kernelAt<double, 18>, kernelAt<double, 19>,
    kernelAt<double, 20>, kernelAt<double, 21>, kernelAt<double, 22>, kernelAt<double, 23>,
    kernelAt<double, 24>, kernelAt<double, 25>, kernelAt<double, 26>, kernelAt<double, 27>,
    kernelAt<double, 28>, kernelAt<double, 29>, kernelAt<double, 30>, kernelAt<double, 31>,
};

constinit const MixKernel mix32Table24[4] = {kernel24At<float, 0>, kernel24At<float, 1>, kernel24At<float, 2>,
                                             kernel24At<float, 3>};

constinit const MixKernel mix64Table24[4] = {kernel24At<double, 0>, kernel24At<double, 1>,
                                             kernel24At<double, 2>, kernel24At<double, 3>};

MixKernel GetMixKernel(std::uint32_t srcBits, std::uint32_t srcChannels, std::uint32_t dstChannels,
                       std::uint32_t replace, std::uint32_t ramped, std::uint32_t mixBits) {
    const std::uint32_t path = mixBits == 32 || mixBits == 64 ? mixBits : defaultMixBits;
    const bool doubles = path == 64;
    if (srcBits == 24) {
        const int row = (replace != 0 ? kReplace24 : 0) + (ramped != 0 ? kRamped24 : 0);
        return doubles ? mix64Table24[row] : mix32Table24[row];
    }
    const std::uint32_t row = rowOf(srcBits == path, srcChannels, dstChannels, replace, ramped);
    return doubles ? mix64Table[row] : mix32Table[row];
}

}  // namespace marnoth
