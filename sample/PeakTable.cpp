#include "sample/PeakTable.h"

#include <algorithm>
#include <cstddef>

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
void foldDense(Extremes& extremes, const float* frame, std::int64_t frames) {
    constexpr int kLanes = 8;
    float low[kLanes];
    float high[kLanes];
    std::fill_n(low, kLanes, 1.0f);
    std::fill_n(high, kLanes, -1.0f);
    constexpr int kFramesAtOnce = kLanes / kChannels;
    for (; frames >= kFramesAtOnce; frames -= kFramesAtOnce, frame += kLanes) {
        for (int k = 0; k < kLanes; ++k) low[k] = frame[k] < low[k] ? frame[k] : low[k];
        for (int k = 0; k < kLanes; ++k) high[k] = frame[k] > high[k] ? frame[k] : high[k];
    }
    for (int k = 0; k < kLanes; ++k) extremes.fold(k % kChannels, low[k], high[k]);
    foldStrided<kChannels>(extremes, frame, frames, kChannels);
}

template <int kChannels>
void foldRun(Extremes& extremes, const SourceWave& wave, std::int64_t begin, std::int64_t end) {
    const float* first = wave.samples + begin * wave.channels;
    if (wave.channels == kChannels) {
        foldDense<kChannels>(extremes, first, end - begin);
    } else {
        foldStrided<kChannels>(extremes, first, end - begin, wave.channels);
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

PeakFolder::PeakFolder(const SourceWave& wave, std::int32_t points, float* table)
    : wave_(wave), points_(wave.frames > 0 ? points : 0), entry_(table) {
    if (points_ <= 0) return;
    step_ = 1.0 / (static_cast<double>(wave.frames) / points);
    entryEnd_ = std::min(endOfEntry(0, step_), wave.frames);
}

void PeakFolder::foldUpTo(std::int64_t frame) {
    const std::int64_t end = std::min(frame, wave_.frames);
    while (at_ < end && point_ < points_) {
        if (at_ == entryEnd_) {
            beginNextEntry();
        } else if (isFirstOfEntry_ && point_ > 0) {
            foldTo(at_ + 1);
            running_.reset();
        } else {
            foldTo(std::min(end, entryEnd_));
        }
    }
}

void PeakFolder::beginNextEntry() {
    ++point_;
    entry_ += std::ptrdiff_t{2} * wave_.channels;
    entryEnd_ = std::min(endOfEntry(point_, step_), wave_.frames);
    isFirstOfEntry_ = true;
}

void PeakFolder::foldTo(std::int64_t end) {
    if (wave_.channels == 2) {
        foldRun<2>(running_, wave_, at_, end);
    } else {
        foldRun<1>(running_, wave_, at_, end);
    }
    for (std::ptrdiff_t c = 0; c < (wave_.channels == 2 ? 2 : 1); ++c) {
        entry_[2 * c] = running_.low[c];
        entry_[2 * c + 1] = running_.high[c];
    }
    at_ = end;
    isFirstOfEntry_ = false;
}

void fillPeaks(const SourceWave& wave, std::int32_t points, float* table) {
    PeakFolder(wave, points, table).foldUpTo(wave.frames);
}

}  // namespace marnoth
