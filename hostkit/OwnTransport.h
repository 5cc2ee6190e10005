#pragma once

#include <cstdint>

#include "hostkit/LiveTransport.h"

namespace marnoth {

/// The transport of a program that has no other clock. It counts frames from where tick 0 would be at its
/// present tempo. One thread at a time.
class OwnTransport {
public:
    /// Goes on from where it stands.
    void play();
    void stop() { playing_ = false; }
    /// Playing or not. A tick that isn't one (`isLiveTick`) changes nothing.
    void locate(double tick);
    /// Playing goes on, and has come to `tick`, as another clock has it: where that is near and the tempo
    /// changes there is no jump.
    void goOnAt(double tick);
    /// A tempo that isn't one (`isLiveTempo`) changes nothing.
    void setTempo(double beatsPerMinute);

    /// What it says of the block to come; `rate` is frames per second.
    LiveTransport next(std::uint32_t rate);
    /// A block is over; `tick` is where playing has come to.
    void advance(std::int32_t frames, double tick);

    bool playing() const { return playing_; }
    double tick() const { return tick_; }
    double tempo() const { return tempo_; }

private:
    bool playing_ = false;
    bool isTold_ = true;       ///< the next block is told where it starts; otherwise it goes on
    bool isTickTold_ = false;  ///< and which tick it is
    double tick_ = 0.0;
    std::int64_t frame_ = 0;
    double tempo_ = kDefaultLiveTempo;
};

}  // namespace marnoth
