#include "shells/desktop/playing/Metronome.h"

#include <cmath>
#include <numbers>

#include "seam/MusicalTime.h"
#include "shells/desktop/playing/Bars.h"

namespace marnoth {

namespace {

constexpr double kBarPitch = 1760.0;   ///< Hz
constexpr double kBeatPitch = 1175.0;  ///< Hz
constexpr double kLoudness = 0.25;
constexpr double kFall = 0.012;    ///< seconds in which it falls to 1/e
constexpr double kLongest = 0.08;  ///< seconds

}  // namespace

void Metronome::begin(std::int64_t beat) {
    age_ = 0;
    pitch_ = beat % kBeatsOfBar == 0 ? kBarPitch : kBeatPitch;
}

float Metronome::next() {
    const double seconds = static_cast<double>(age_) / rate_;
    if (seconds >= kLongest) {
        age_ = -1;
        return 0.0f;
    }
    ++age_;
    return static_cast<float>(kLoudness * std::exp(-seconds / kFall) *
                              std::sin(2.0 * std::numbers::pi * pitch_ * seconds));
}

void Metronome::add(std::span<float> left, std::span<float> right, double tick, double ticksPerFrame,
                    bool on) {
    // Where a stretch goes on from the last one, a beat on their edge is neither lost nor heard twice,
    // however its tick is rounded.
    constexpr double kRounding = 1e-3;
    if (std::abs(tick - reached_) > kRounding) beat_ = std::ceil((tick - kRounding) / kTicksPerBeat);
    reached_ = tick + static_cast<double>(left.size()) * ticksPerFrame;
    for (std::size_t frame = 0; frame < left.size(); ++frame) {
        if (ticksPerFrame > 0.0 &&
            tick + static_cast<double>(frame) * ticksPerFrame >= beat_ * kTicksPerBeat) {
            if (on) begin(static_cast<std::int64_t>(beat_));
            ++beat_;
        }
        if (age_ < 0) continue;
        const float click = next();
        left[frame] += click;
        right[frame] += click;
    }
}

}  // namespace marnoth
