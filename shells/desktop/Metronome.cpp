#include "shells/desktop/Metronome.h"

#include <cmath>
#include <numbers>

#include "seam/MusicalTime.h"
#include "shells/desktop/Bars.h"

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
    // The beat that is next at the first frame; a beat within a frame belongs to the frame behind it.
    double beat = std::ceil(tick / kTicksPerBeat);
    for (std::size_t frame = 0; frame < left.size(); ++frame) {
        if (on && ticksPerFrame > 0.0 &&
            tick + static_cast<double>(frame) * ticksPerFrame >= beat * kTicksPerBeat)
            begin(static_cast<std::int64_t>(beat++));
        if (age_ < 0) continue;
        const float click = next();
        left[frame] += click;
        right[frame] += click;
    }
}

}  // namespace marnoth
