#pragma once

#include <algorithm>
#include <cstdint>

namespace marnoth {

/// What a grain is set to, but for the audio that it plays: the one value that grains, projects and undo hold
/// alike. Frames are at the rate of the sample that it was cut from.
struct GrainSettings {
    std::int32_t binFile = -1;    ///< Loop Bin file it came from
    std::int32_t binGrain = -1;   ///< its index in that file
    std::int64_t startTicks = 0;  ///< on the track, 16.16 ticks
    std::int64_t startSamples = 0;
    std::int64_t lengthTicks = 0;        ///< on the track, 16.16 ticks
    std::int64_t lengthSamples = 0;      ///< in the sample
    std::int64_t tailLengthSamples = 0;  ///< of the tail wave
    std::uint32_t tempoLocked = 0;       ///< cut on the file's beat grid: stretches with the tempo
    double pitchRatio = 1.0;             ///< extra playback ratio of the transposed render
    std::int32_t transpose = 0;          ///< semitones
    double volume = 1.0;
    double pan = 0.5;               ///< 0 left to 1 right
    std::uint32_t tailOn = 0;       ///< the render reads the tail instead of the sample
    std::int64_t sampleOffset = 0;  ///< first frame of the grain in the sample
    std::uint32_t peakOffset = 0;   ///< first entry in the sample's peak table
    std::uint32_t peakCount = 0;

    /// What a load makes of saved settings: negative times count as 0.
    GrainSettings sanitized() const {
        GrainSettings mended = *this;
        for (std::int64_t* time :
             {&mended.startTicks, &mended.startSamples, &mended.lengthTicks, &mended.lengthSamples})
            *time = std::max<std::int64_t>(*time, 0);
        return mended;
    }
};

}  // namespace marnoth
