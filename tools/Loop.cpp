#include "tools/Loop.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace marnoth::tools {

Loop Loop::of(std::string title, std::uint32_t rate, std::uint32_t channels, std::uint32_t beats,
              double tempo) {
    Loop loop;
    loop.title = std::move(title);
    loop.rate = rate;
    loop.channels = channels;
    loop.beats = beats;
    loop.tempo = tempo;
    loop.samples.resize(std::size_t{loop.frameAt(beats)} * channels);
    return loop;
}

std::uint32_t Loop::frameAt(double beat) const {
    return static_cast<std::uint32_t>(std::lround(beat * 60.0 / tempo * rate));
}

void Loop::normalize(float peak) {
    float highest = 0;
    for (const float sample : samples) highest = std::max(highest, std::abs(sample));
    if (highest == 0) return;
    for (float& sample : samples) sample *= peak / highest;
}

void addVoice(Loop& loop, double beat, double seconds, double pan, const Voice& voice) {
    const double left = std::cos(pan * std::numbers::pi / 2);
    const double right = std::sin(pan * std::numbers::pi / 2);
    const std::size_t start = loop.frameAt(beat);
    const auto frames = static_cast<std::size_t>(seconds * loop.rate);
    for (std::size_t i = 0; i < frames; ++i) {
        const double value = voice(static_cast<double>(i) / loop.rate);
        float* frame = &loop.samples[(start + i) % loop.frames() * loop.channels];
        frame[0] += static_cast<float>(loop.channels == 2 ? value * left : value);
        if (loop.channels == 2) frame[1] += static_cast<float>(value * right);
    }
}

}  // namespace marnoth::tools
