#include "sample/PeakTable.h"

#include <algorithm>
#include <cstddef>

#include "dsp/WideRegisters.h"

namespace marnoth {
namespace {

using Extremes = PeakFolder::Extremes;

/// Folds frames that lie `stride` values apart.
template <int kChannels>
void foldStrided(Extremes& extremes, const float* frame, std::int64_t frames, std::int32_t stride) {
    for (; frames > 0; --frames, frame += stride) {
        for (int c = 0; c < kChannels; ++c) extremes.fold(c, frame[c], frame[c]);
    }
}

/// Folds frames that lie side by side, in lanes that the compiler turns into vectors.
template <int kChannels>
[[gnu::always_inline]] inline void foldDense(Extremes* const& extremes, const float* const& frames,
                                             const std::int64_t& count) {
    constexpr int kLanes = 32;
    constexpr int kFramesAtOnce = kLanes / kChannels;
    float low[kLanes];
    float high[kLanes];
    std::fill_n(low, kLanes, 1.0f);
    std::fill_n(high, kLanes, -1.0f);
    const float* frame = frames;
    std::int64_t left = count;
    for (; left >= kFramesAtOnce; left -= kFramesAtOnce, frame += kLanes) {
        for (int k = 0; k < kLanes; ++k) low[k] = frame[k] < low[k] ? frame[k] : low[k];
        for (int k = 0; k < kLanes; ++k) high[k] = frame[k] > high[k] ? frame[k] : high[k];
    }
    for (int k = 0; k < kLanes; ++k) extremes->fold(k % kChannels, low[k], high[k]);
    foldStrided<kChannels>(*extremes, frame, left, kChannels);
}

template <int kChannels>
void foldFrames(Extremes& extremes, const float* frame, std::int64_t frames, std::int32_t stride) {
    if (stride == kChannels) {
        withWidest<foldDense<kChannels>>(&extremes, frame, frames);
    } else {
        foldStrided<kChannels>(extremes, frame, frames, stride);
    }
}

/// The first frame that belongs to an entry behind `point`: frame i is in entry trunc(i * step).
std::int64_t endOfEntry(std::int64_t point, double step) {
    const auto next = static_cast<double>(point + 1);
    auto frame = static_cast<std::int64_t>(next / step);
    while (frame > 0 && static_cast<double>(frame - 1) * step >= next) --frame;
    while (static_cast<double>(frame) * step < next) ++frame;
    return frame;
}

}  // namespace

void PeakFolder::Extremes::reset() {
    std::fill_n(low, 2, 1.0f);
    std::fill_n(high, 2, -1.0f);
}

void PeakFolder::Extremes::fold(int channel, float lowest, float highest) {
    low[channel] = lowest < low[channel] ? lowest : low[channel];
    high[channel] = highest > high[channel] ? highest : high[channel];
}

PeakFolder::PeakFolder(std::int64_t frames, std::int32_t channels, std::int32_t points, float* table)
    : frames_(frames), channels_(channels), points_(frames > 0 ? points : 0), entry_(table) {
    if (points_ <= 0) return;
    step_ = 1.0 / (static_cast<double>(frames) / points);
    entryEnd_ = std::min(endOfEntry(0, step_), frames);
}

void PeakFolder::fold(const float* next, std::int64_t count) {
    const std::int64_t end = std::min(at_ + count, frames_);
    while (at_ < end && point_ < points_) {
        if (at_ == entryEnd_) {
            beginNextEntry();
            continue;
        }
        const std::int64_t run = std::min(endOfRun(), end) - at_;
        foldRun(next, run);
        next += run * channels_;
    }
}

/// An entry's first frame is a run of its own, but for that of the first entry.
std::int64_t PeakFolder::endOfRun() const {
    return isFirstOfEntry_ && point_ > 0 ? at_ + 1 : entryEnd_;
}

void PeakFolder::beginNextEntry() {
    ++point_;
    entry_ += std::ptrdiff_t{2} * channels_;
    entryEnd_ = std::min(endOfEntry(point_, step_), frames_);
    isFirstOfEntry_ = true;
}

void PeakFolder::foldRun(const float* run, std::int64_t count) {
    const std::ptrdiff_t sides = channels_ == 2 ? 2 : 1;
    if (sides == 2) {
        foldFrames<2>(running_, run, count, channels_);
    } else {
        foldFrames<1>(running_, run, count, channels_);
    }
    for (std::ptrdiff_t c = 0; c < sides; ++c) {
        entry_[2 * c] = running_.low[c];
        entry_[2 * c + 1] = running_.high[c];
    }
    if (isFirstOfEntry_ && point_ > 0) running_.reset();
    at_ += count;
    isFirstOfEntry_ = false;
}

void fillPeaks(const SourceWave& wave, std::int32_t points, float* table) {
    PeakFolder(wave.frames, wave.channels, points, table).fold(wave.samples, wave.frames);
}

}  // namespace marnoth
