#pragma once

#include <cstdint>
#include <span>

namespace marnoth {

/// A click on every beat, a higher one on the first of a bar of four. The thread that renders.
class Metronome {
public:
    void setRate(std::uint32_t rate) { rate_ = rate; }
    /// Adds to a stretch of frames which begins at `tick` and in which a frame is `ticksPerFrame` ticks long;
    /// 0 while the transport stands: then a click that has begun goes on. `on` false begins none.
    void add(std::span<float> left, std::span<float> right, double tick, double ticksPerFrame, bool on);

private:
    void begin(std::int64_t beat);
    float next();

    std::uint32_t rate_ = 48000;
    std::int64_t age_ = -1;  ///< frames since the click began; -1 for none
    double pitch_ = 0.0;     ///< Hz
    double reached_ = -1.0;  ///< the tick at which the last stretch ended
    double beat_ = 0.0;      ///< the one to come there
};

}  // namespace marnoth
