#include "sample/PeakTable.h"

#include <algorithm>

namespace marnoth {
namespace {

/// Extremes of a run of values, those of alternating channels apart. A value beyond the full scale counts; no
/// run has a minimum above 1 or a maximum below -1.
template <int kChannels>
struct Extremes {
    float low[kChannels];
    float high[kChannels];

    Extremes() { reset(); }
    void reset() {
        std::fill_n(low, kChannels, 1.0f);
        std::fill_n(high, kChannels, -1.0f);
    }
    void fold(int channel, float lowest, float highest) {
        low[channel] = lowest < low[channel] ? lowest : low[channel];
        high[channel] = highest > high[channel] ? highest : high[channel];
    }
    void store(float* entry) const {
        for (std::ptrdiff_t c = 0; c < kChannels; ++c) {
            entry[2 * c] = low[c];
            entry[2 * c + 1] = high[c];
        }
    }
};

/// Folds frames that lie `stride` values apart.
template <int kChannels>
void foldStrided(Extremes<kChannels>& extremes, const float* frame, std::int64_t frames,
                 std::int32_t stride) {
    for (; frames > 0; --frames, frame += stride) {
        for (int c = 0; c < kChannels; ++c) extremes.fold(c, frame[c], frame[c]);
    }
}

/// Folds frames that lie side by side, in lanes that the compiler turns into vectors.
template <int kChannels>
void foldDense(Extremes<kChannels>& extremes, const float* frame, std::int64_t frames) {
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
    foldStrided(extremes, frame, frames, kChannels);
}

template <int kChannels>
void foldRun(Extremes<kChannels>& extremes, const SourceWave& wave, std::int64_t begin, std::int64_t end) {
    const float* first = wave.samples + begin * wave.channels;
    if (wave.channels == kChannels) {
        foldDense(extremes, first, end - begin);
    } else {
        foldStrided(extremes, first, end - begin, wave.channels);
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

/// An entry's first frame is folded with the extremes of the entry before, and isn't part of the extremes
/// that its later frames leave there.
template <int kChannels>
void fill(const SourceWave& wave, std::int32_t points, float* table) {
    const double step = 1.0 / (static_cast<double>(wave.frames) / points);
    Extremes<kChannels> running;
    std::int64_t begin = 0;
    for (std::int32_t point = 0; point < points && begin < wave.frames;
         ++point, table += std::ptrdiff_t{2} * wave.channels) {
        const std::int64_t end = std::min(endOfEntry(point, step), wave.frames);
        if (begin == end) continue;
        if (point > 0) {
            foldRun(running, wave, begin, begin + 1);
            running.store(table);
            running.reset();
            ++begin;
        }
        foldRun(running, wave, begin, end);
        if (begin < end) running.store(table);
        begin = end;
    }
}

}  // namespace

void fillPeaks(const SourceWave& wave, std::int32_t points, float* table) {
    if (wave.frames <= 0 || points <= 0) return;
    if (wave.channels == 2) {
        fill<2>(wave, points, table);
    } else {
        fill<1>(wave, points, table);
    }
}

}  // namespace marnoth
