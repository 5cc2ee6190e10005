#pragma once

#include <cstdint>

namespace marnoth {

/// The one argument of every mix kernel. The caller clears the whole record before it fills it.
///
/// Buffers are interleaved: a mono buffer has one sample per frame, a stereo buffer two, left first.
/// Gains are plain factors. With `step` and `curve` the gain of frame i is gain + i * step + i * (i - 1) / 2
/// * curve.
struct MixArgs {
    void* dest =
        nullptr;  ///< first destination frame; `float` for the float family, `double` for the double one
    const void* src = nullptr;  ///< first source frame
    std::int32_t count = 0;     ///< frames; 0 or negative does nothing
    double gainL = 0;           ///< gain of the first frame, left; the only gain of mono into mono
    double gainR = 0;           ///< gain of the first frame, right
    double stepL = 0;           ///< what `gainL` changes by after the first frame
    double stepR = 0;
    double curveL = 0;  ///< what `stepL` changes by after each frame
    double curveR = 0;
    std::uint32_t sampleBytes = 0;  ///< bytes per source sample; every caller fills it, no kernel reads it
};

/// Moves `count` frames from `src` into `dest` under a gain per side, adding or replacing. On return `gainL`
/// and `gainR` hold the gains behind the last frame; steps and curves are left as they came in. Any thread;
/// no state of its own, no allocation.
///
/// Rows 4, 6, 14, 20, 22 and 30 take a fast body where source and destination both begin at a multiple of 16
/// bytes (on 64-bit x86). It rounds the gains to the samples' type first, so that in the float family the
/// last bit may differ from that of an unaligned run, and from then on the calling thread has 0 for results
/// below the normal numbers.
using MixKernel = void (*)(MixArgs*);

/// The mix path of callers that don't name one: 32, the float family.
extern const std::uint16_t defaultMixBits;

/// The kernels by index: 16 replace, 8 stereo source, 4 float source (else 16-bit), 2 stereo destination, 1
/// ramped. `mix64Table` has a 64-bit float source where `mix32Table` has a 32-bit one. Filled at build time.
extern const MixKernel mix32Table[32];
extern const MixKernel mix64Table[32];
/// 24-bit mono into mono: 2 replace, 1 ramped.
extern const MixKernel mix32Table24[4];
extern const MixKernel mix64Table24[4];

/// Selects a kernel; never null, whatever the arguments.
///
/// `srcBits` is the source's sample format: 16, 24, 32 or 64. `srcChannels` and `dstChannels`: 2 is stereo,
/// all else mono. `replace` non-zero overwrites the destination, 0 adds. `ramped` non-zero runs the steps and
/// curves. `mixBits`: 32 the float family, 64 the double one, all else the default. 24-bit sources are mono
/// into mono whatever the channels.
MixKernel GetMixKernel(std::uint32_t srcBits, std::uint32_t srcChannels, std::uint32_t dstChannels,
                       std::uint32_t replace, std::uint32_t ramped, std::uint32_t mixBits);

}  // namespace marnoth
