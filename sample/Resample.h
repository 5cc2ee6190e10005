#pragma once

#include <cstdint>
#include <vector>

#include "dsp/SourceWave.h"

namespace marnoth {

/// Brings a wave to another rate by a quadratic through four points: frame i of `dest` lies at i / `ratio` of
/// `source`. Around the source is silence; its guard frame isn't read. `frames` frames of `dest` are written,
/// all channels of them. Both have less than 2^31 frames.
void resample(const SourceWave& source, float* dest, std::int64_t frames, double ratio);

/// The same for a source that comes in block by block and is never there as a whole. Owns room for one block;
/// `dest` is the caller's.
class RateChange {
public:
    /// For blocks of `blockFrames` frames at most. Throws `std::bad_alloc`.
    RateChange(float* dest, std::int64_t frames, double ratio, std::int32_t channels,
               std::int64_t blockFrames);

    /// Where the next frames of the source are put.
    float* block() { return window_.data() + kReach * channels_; }
    /// Takes the first `count` frames of the block, and writes the new frames whose four points are there.
    void take(std::int64_t count);
    /// Writes what is left: behind the last frame that was taken is silence.
    void finish();

private:
    /// How far a new frame that had to wait reaches back behind the frames that came in before.
    static constexpr std::int64_t kReach = 3;

    void writeUpTo(std::int64_t end, std::int64_t windowFrames);
    std::int64_t firstBeyond(std::int64_t sourceFrame) const;

    float* dest_;
    std::int64_t frames_;
    double ratio_;
    std::int32_t channels_;
    std::vector<float> window_;  ///< the last frames of the block before, then the block
    std::int64_t taken_ = 0;     ///< frames of the source
    std::int64_t written_ = 0;   ///< frames of `dest`
};

}  // namespace marnoth
