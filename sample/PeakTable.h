#pragma once

#include <cstdint>

#include "dsp/SourceWave.h"

namespace marnoth {

/// Fills a peak table while the frames of its wave come in, so that they are folded as long as they are near.
///
/// The table has `points` entries of 2 * channels values, which are 0 before: the minimum and maximum of the
/// first channel, then of the second when there are two. Values beyond those stay 0, and so do entries that
/// no frame reaches. The table is the caller's.
class PeakFolder {
public:
    /// Extremes of a run of frames. A value beyond the full scale counts; no run has a minimum above 1 or a
    /// maximum below -1.
    struct Extremes {
        float low[2] = {1.0f, 1.0f};
        float high[2] = {-1.0f, -1.0f};

        void reset();
        void fold(int channel, float lowest, float highest);
    };

    /// For a wave of `frames` frames.
    PeakFolder(std::int64_t frames, std::int32_t channels, std::int32_t points, float* table);

    /// Folds the next `count` frames of the wave. An entry's first frame is folded with the extremes of the
    /// entry before, and isn't part of the extremes that its later frames leave there.
    void fold(const float* next, std::int64_t count);

private:
    std::int64_t endOfRun() const;
    void beginNextEntry();
    void foldRun(const float* run, std::int64_t count);

    std::int64_t frames_;
    std::int32_t channels_;
    std::int32_t points_;
    float* entry_;
    double step_ = 0;
    std::int32_t point_ = 0;
    std::int64_t at_ = 0;
    std::int64_t entryEnd_ = 0;
    bool isFirstOfEntry_ = true;
    Extremes running_;
};

/// The whole table of a wave that is there.
void fillPeaks(const SourceWave& wave, std::int32_t points, float* table);

}  // namespace marnoth
