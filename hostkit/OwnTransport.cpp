#include "hostkit/OwnTransport.h"

#include "seam/MusicalTime.h"

namespace marnoth {

void OwnTransport::play() {
    isTold_ = isTold_ || !playing_;
    playing_ = true;
}

void OwnTransport::locate(double tick) {
    if (!isLiveTick(tick)) return;
    tick_ = tick;
    isTold_ = true;
}

void OwnTransport::goOnAt(double tick) {
    if (!isLiveTick(tick)) return;
    tick_ = tick;
    isTickTold_ = true;
}

void OwnTransport::setTempo(double beatsPerMinute) {
    if (isLiveTempo(beatsPerMinute)) tempo_ = beatsPerMinute;
}

LiveTransport OwnTransport::next(std::uint32_t rate) {
    LiveTransport transport{playing_, frame_, {}, tempo_};
    if (isTold_ || isTickTold_) transport.tick = tick_;
    if (!isTold_) return transport;
    const double seconds = tick_ * 60.0 / (tempo_ * kTicksPerBeat);
    frame_ = transport.frame = roundHalfUp(seconds * rate);
    return transport;
}

void OwnTransport::advance(std::int32_t frames, double tick) {
    if (!playing_) return;
    isTold_ = isTickTold_ = false;
    frame_ += frames;
    tick_ = tick;
}

}  // namespace marnoth
